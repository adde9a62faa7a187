#include "analysis/Anisotropy.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "estimation/Estimates.h"
#include "estimation/Estimator.h"
#include "estimation/chooseEstimator.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::Anisotropy;
using fenn::estimation::Estimates;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::smoothSamples;

constexpr double pi = 3.14159265358979324;

double distanceAfter(const Anisotropy& anisotropy, double x, double y)
{
    double along = 0.0;
    double across = 0.0;
    anisotropy.apply(&x, &y, 1, &along, &across);
    return std::hypot(along, across);
}

Estimates estimatesOf(const SampleSet& samples, const ModelSettings& settings, const SampleSet& targets)
{
    return fenn::estimation::estimateAt(*fenn::estimation::chooseEstimator(samples, settings), targets);
}

void expectClose(const std::vector<double>& actual, const std::vector<double>& expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(actual[i], expected[i], 1e-10 * (1.0 + std::fabs(expected[i])));
}

TEST(AnisotropyTest, AStepAlongKeepsItsLengthAndOneAcrossGetsTheRatio)
{
    for (const double angle : {0.0, 30.0, 45.0, 90.0, 120.0, 179.0})
    {
        const Anisotropy anisotropy(3.0, angle);
        const double c = std::cos(angle * pi / 180.0);
        const double s = std::sin(angle * pi / 180.0);

        EXPECT_NEAR(distanceAfter(anisotropy, 2.0 * c, 2.0 * s), 2.0, 1e-14) << angle;
        EXPECT_NEAR(distanceAfter(anisotropy, -2.0 * s, 2.0 * c), 6.0, 1e-14) << angle;
    }
}

TEST(AnisotropyTest, DistancesAreThoseOfTheEllipse)
{
    // (x, y)^T R^T diag(1, ratio^2) R (x, y), multiplied out.
    const double x = 1.3;
    const double y = -0.4;
    const double angle = 25.0 * pi / 180.0;
    const double u = x * std::cos(angle) + y * std::sin(angle);
    const double v = -x * std::sin(angle) + y * std::cos(angle);

    EXPECT_NEAR(distanceAfter(Anisotropy(4.0, 25.0), x, y), std::sqrt(u * u + 16.0 * v * v), 1e-14);
}

TEST(AnisotropyTest, OppositeDirectionsAreOne)
{
    EXPECT_EQ(Anisotropy(2.0, 200.0).getAngle(), 20.0);
    EXPECT_EQ(Anisotropy(2.0, -30.0).getAngle(), 150.0);
    EXPECT_EQ(Anisotropy(2.0, 180.0).getAngle(), 0.0);
    EXPECT_EQ(Anisotropy(2.0, -1e-20).getAngle(), 0.0);
    EXPECT_FALSE(std::signbit(Anisotropy(2.0, -180.0).getAngle()));
    EXPECT_EQ(Anisotropy(2.0, 20.0).getRatio(), 2.0);
}

TEST(AnisotropyTest, AlongAnAxisNothingIsRounded)
{
    const double x = 0.1;
    const double y = 1e20;
    double along = 0.0;
    double across = 0.0;

    Anisotropy(2.0, 90.0).apply(&x, &y, 1, &along, &across);

    EXPECT_EQ(along, 1e20);
    EXPECT_EQ(across, -0.2);
}

TEST(AnisotropyTest, AlongTheFirstAxisItIsAScaleFactorOfTheSecond)
{
    const SampleSet samples = smoothSamples(60, 4);
    const SampleSet targets = smoothSamples(20, 5);
    const Anisotropy anisotropy(2.5, 0.0);

    const Estimates expected = estimatesOf(samples, {-1.0, {1.0, 2.5}, 1, 0.4, 0.1, 0}, targets);
    const Estimates actual =
        estimatesOf(anisotropy.apply(samples), {-1.0, {1.0, 1.0}, 1, 0.4, 0.1, 0}, anisotropy.apply(targets));

    expectClose(actual.values[0], expected.values[0]);
    expectClose(actual.variances, expected.variances);
}

TEST(AnisotropyTest, RotatedSamplesWithARotatedAngleGiveTheSameEstimates)
{
    const SampleSet samples = smoothSamples(60, 6);
    const SampleSet targets = smoothSamples(20, 7);
    const Anisotropy turn(1.0, 40.0); // by -40 degrees, as the axes turn by 40
    const Anisotropy before(3.0, 70.0);
    const Anisotropy after(3.0, 30.0);
    const ModelSettings settings{-1.0, {1.0, 1.0}, 0, 0.4, 0.1, 0};

    const Estimates expected = estimatesOf(before.apply(samples), settings, before.apply(targets));
    const Estimates actual = estimatesOf(after.apply(turn.apply(samples)), settings, after.apply(turn.apply(targets)));

    expectClose(actual.values[0], expected.values[0]);
    expectClose(actual.variances, expected.variances);
}

TEST(AnisotropyTest, OutputsAreKept)
{
    const SampleSet samples = smoothSamples(10, 8);

    const SampleSet transformed = Anisotropy(2.0, 10.0).apply(samples);

    EXPECT_EQ(transformed.getOutput(0), samples.getOutput(0));
    EXPECT_EQ(transformed.getOutput(1), samples.getOutput(1));
}

TEST(AnisotropyTest, WhatIsNoAnisotropyIsRefused)
{
    for (const double ratio : {0.5, 0.0, -2.0, std::nan(""), std::numeric_limits<double>::infinity()})
        EXPECT_THROW(Anisotropy(ratio, 0.0), std::invalid_argument) << ratio;
    for (const double angle : {std::nan(""), std::numeric_limits<double>::infinity()})
        EXPECT_THROW(Anisotropy(2.0, angle), std::invalid_argument) << angle;
    EXPECT_THROW(Anisotropy(2.0, 0.0).apply(SampleSet({{0.0, 1.0}}, {{1.0, 2.0}})), std::invalid_argument);
}

} // namespace
