#include "analysis/Support.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::Support;
using fenn::analysis::SupportCounts;
using fenn::estimation::makeModelParts;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::estimation::Targets;
using Columns = std::vector<std::vector<double>>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// A square with sides of 2, which stay as they are: the diagonal is the root of 8.
SampleSet square()
{
    return SampleSet({{-1.0, 1.0, 1.0, -1.0}, {-1.0, -1.0, 1.0, 1.0}}, {{1.0, 2.0, 3.0, 4.0}});
}

/// Normalised range of 1.
const ModelSettings rangeOfOne{-1.0, {}, 0, 1.0 / std::sqrt(8.0), 0.0, 0};

Targets targetsAt(const Columns& columns)
{
    Targets targets;
    for (const std::vector<double>& column : columns)
        targets.coords.push_back(column.data());
    targets.count = columns[0].size();
    return targets;
}

TEST(SupportTest, TheFacesBelongToTheBox)
{
    const SampleSet samples = square();
    const auto parts = makeModelParts(samples, rangeOfOne);
    const Support support(*parts);
    const auto isInside = [&](double x, double y)
    {
        const double target[] = {x, y};
        return support.isInsideBox(target);
    };

    EXPECT_TRUE(isInside(0.0, 0.0));
    EXPECT_TRUE(isInside(1.0, -1.0));
    EXPECT_FALSE(isInside(1.0 + 1e-15, 0.0));
    EXPECT_FALSE(isInside(0.0, -1.1));
    EXPECT_FALSE(isInside(0.0, notANumber));
}

TEST(SupportTest, OutsideTheBoxTheRangeOfTheNearestSampleDecides)
{
    const SampleSet samples = square();
    const auto parts = makeModelParts(samples, rangeOfOne);
    const Support support(*parts);
    const auto isSupported = [&](double x, double y)
    {
        const double target[] = {x, y};
        return support.isSupported(target);
    };

    EXPECT_TRUE(isSupported(0.0, 0.0)); // farther than the range from every sample, but between them
    EXPECT_TRUE(isSupported(1.9, 1.0));
    EXPECT_FALSE(isSupported(2.1, 1.0));
    EXPECT_FALSE(isSupported(1.1, 0.0)); // near to the box, but to no sample
    EXPECT_FALSE(isSupported(1.8, 1.8));
    EXPECT_FALSE(isSupported(notANumber, 0.0));
    EXPECT_FALSE(isSupported(infinity, 0.0));
    EXPECT_FALSE(isSupported(1e300, 1e300));
}

TEST(SupportTest, WithinTheRangeIsNearSomeSampleWhereverTheBoxIs)
{
    const SampleSet samples = square();
    const auto parts = makeModelParts(samples, rangeOfOne);
    const Support support(*parts);
    const auto isWithinRange = [&](double x, double y)
    {
        const double target[] = {x, y};
        return support.isWithinRange(target);
    };

    EXPECT_FALSE(isWithinRange(0.0, 0.0)); // in the middle of the box
    EXPECT_TRUE(isWithinRange(0.9, 0.9));
    EXPECT_TRUE(isWithinRange(1.9, 1.0));
    EXPECT_FALSE(isWithinRange(2.1, 1.0));
    EXPECT_FALSE(isWithinRange(notANumber, 0.0));
}

TEST(SupportTest, DistancesAreNormalised)
{
    // A side of 100 and one of 1: both 2 when normalised.
    const SampleSet samples({{0.0, 100.0, 100.0, 0.0}, {0.0, 0.0, 1.0, 1.0}}, {{1.0, 2.0, 3.0, 4.0}});
    const auto parts = makeModelParts(samples, {});
    const Support support(*parts);
    const double target[] = {150.0, 1.0};

    EXPECT_NEAR(support.calcDistanceToNearest(target), 1.0, 1e-15);
}

TEST(SupportTest, FiguresAreThoseOfALookAtEverySample)
{
    const SampleSet samples = fenn::test::smoothSamples(300, 4);
    const ModelSettings settings{-1.0, {1.0, 3.0}, 0, 0.05, 0.0, 0};
    const auto parts = makeModelParts(samples, settings);
    const Support support(*parts);
    const Columns columns = fenn::test::randomValues(2, 2000, -0.2, 1.2, 5);
    double squaredDiagonal = 0.0;
    std::vector<double> scales;
    for (std::size_t v = 0; v < 2; ++v)
    {
        scales.push_back(parts->getNormalizers()[v].getScale());
        squaredDiagonal += std::pow(samples.calcInputRange(v) * scales[v], 2);
    }
    const double range = settings.rangeFraction * std::sqrt(squaredDiagonal);

    std::vector<double> distances(2000);
    support.calcDistancesToNearest(targetsAt(columns), distances.data());
    SupportCounts expected;
    for (std::size_t t = 0; t < 2000; ++t)
    {
        double nearest = infinity;
        for (std::size_t i = 0; i < 300; ++i)
            nearest = std::fmin(nearest, std::hypot((columns[0][t] - samples.getInput(0)[i]) * scales[0],
                                                    (columns[1][t] - samples.getInput(1)[i]) * scales[1]));
        EXPECT_NEAR(distances[t], nearest, 1e-14);
        const double target[] = {columns[0][t], columns[1][t]};
        const bool isInside = support.isInsideBox(target);
        expected.numOutsideBox += isInside ? 0 : 1;
        expected.numUnsupported += !isInside && nearest >= range ? 1 : 0;
        EXPECT_EQ(support.isSupported(target), isInside || nearest < range);
    }
    const SupportCounts counts = support.count(targetsAt(columns));
    EXPECT_EQ(counts.numOutsideBox, expected.numOutsideBox);
    EXPECT_EQ(counts.numUnsupported, expected.numUnsupported);
    EXPECT_GT(expected.numUnsupported, 100U);
    EXPECT_GT(expected.numOutsideBox - expected.numUnsupported, 50U);
}

TEST(SupportTest, SwappedColumnsAreUnsupportedThroughout)
{
    const SampleSet samples(fenn::test::randomValues(1, 50, 180000.0, 182000.0, 6),
                            fenn::test::randomValues(1, 50, 0.0, 1.0, 7));
    std::vector<std::vector<double>> inputs{samples.getInput(0), fenn::test::randomValues(1, 50, 330.0, 334.0, 8)[0]};
    const SampleSet plane(inputs, {samples.getOutput(0)});
    const auto parts = makeModelParts(plane, {});

    const SupportCounts counts = Support(*parts).count(targetsAt({inputs[1], inputs[0]}));

    EXPECT_EQ(counts.numOutsideBox, 50U);
    EXPECT_EQ(counts.numUnsupported, 50U);
}

TEST(SupportTest, TargetsThatAreNotFiniteAreNotCounted)
{
    const SampleSet samples = square();
    const auto parts = makeModelParts(samples, rangeOfOne);
    const Support support(*parts);
    const Columns columns{{notANumber, infinity, 5.0}, {0.0, 0.0, 0.0}};

    const SupportCounts counts = support.count(targetsAt(columns));

    EXPECT_EQ(counts.numOutsideBox, 1U);
    EXPECT_EQ(counts.numUnsupported, 1U);
    const double target[] = {notANumber, 0.0};
    EXPECT_EQ(support.calcDistanceToNearest(target), infinity);
}

} // namespace
