#include "analysis/SemivariogramFit.h"

#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/analysis/BinsOf.h"
#include "tests/analysis/SimulatedField.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::analysis::fitSpherical;
using fenn::analysis::LagBin;
using fenn::analysis::SphericalFit;
using fenn::estimation::ModelSettings;

double spherical(double lag, double nugget, double partialSill, double range)
{
    const double x = std::fmin(lag / range, 1.0);
    return nugget + partialSill * (1.5 * x - 0.5 * x * x * x);
}

/// 15 bins at lags 0.1 to 1.5 and some hundred pairs each.
template <typename Function>
std::vector<LagBin> binsOf(const Function& semivariance)
{
    std::vector<LagBin> bins;
    for (std::size_t k = 1; k <= 15; ++k)
    {
        const double lag = 0.1 * static_cast<double>(k);
        bins.push_back({lag - 0.05, lag + 0.05, lag, semivariance(lag), 0.0, 100 * k});
    }
    return bins;
}

TEST(SemivariogramFitTest, SphericalBinsAreMetExactly)
{
    for (const double nugget : {0.0, 0.5, 3.0})
    {
        for (const double range : {0.35, 0.8, 1.5, 3.0})
        {
            SCOPED_TRACE(testing::Message() << "nugget " << nugget << ", range " << range);

            const SphericalFit fit =
                fitSpherical(binsOf([&](double lag) { return spherical(lag, nugget, 2.0, range); }));

            EXPECT_TRUE(fit.hasConverged);
            EXPECT_FALSE(fit.isRangeAtUpperBound);
            EXPECT_NEAR(fit.sill, nugget + 2.0, 1e-5);
            EXPECT_NEAR(fit.nuggetFraction, nugget / (nugget + 2.0), 1e-5);
            EXPECT_NEAR(fit.range, range, 1e-5);
            EXPECT_NEAR(fit.meanSquaredDeviation, 0.0, 1e-10);
            EXPECT_NEAR(fit.evaluate(0.0), nugget, 1e-5);
            EXPECT_NEAR(fit.evaluate(0.2), spherical(0.2, nugget, 2.0, range), 1e-5);
        }
    }
}

TEST(SemivariogramFitTest, NothingNearDoesBetterWithTheWeightsOfTheFit)
{
    const std::vector<double> noise = fenn::test::randomValues(1, 15, 0.8, 1.2, 5)[0];
    std::vector<LagBin> bins = binsOf([](double lag) { return spherical(lag, 0.6, 2.0, 0.9); });
    for (std::size_t b = 0; b < bins.size(); ++b)
        bins[b].semivariance *= noise[b];

    const SphericalFit fit = fitSpherical(bins);

    const auto weightedSquares = [&](double sill, double nuggetFraction, double range)
    {
        double sum = 0.0;
        for (const LagBin& bin : bins)
        {
            const double deviation =
                bin.semivariance - spherical(bin.meanLag, sill * nuggetFraction, sill * (1.0 - nuggetFraction), range);
            sum += static_cast<double>(bin.numPairs) * std::pow(deviation / fit.evaluate(bin.meanLag), 2);
        }
        return sum;
    };
    const double best = weightedSquares(fit.sill, fit.nuggetFraction, fit.range);
    EXPECT_TRUE(fit.hasConverged);
    for (const double factor : {0.9, 0.99, 0.999, 1.001, 1.01, 1.1})
    {
        EXPECT_GT(weightedSquares(factor * fit.sill, fit.nuggetFraction, fit.range), best) << factor;
        EXPECT_GT(weightedSquares(fit.sill, factor * fit.nuggetFraction, fit.range), best) << factor;
        EXPECT_GT(weightedSquares(fit.sill, fit.nuggetFraction, factor * fit.range), best) << factor;
    }
    EXPECT_NEAR(fit.meanSquaredDeviation, best / 12000.0, 1e-9); // pairs: 100 (1 + ... + 15)
}

TEST(SemivariogramFitTest, UnitsOfLagsAndOutputsDoNotMatter)
{
    const std::vector<double> noise = fenn::test::randomValues(1, 15, 0.8, 1.2, 6)[0];
    std::vector<LagBin> bins = binsOf([](double lag) { return spherical(lag, 0.6, 2.0, 0.9); });
    for (std::size_t b = 0; b < bins.size(); ++b)
        bins[b].semivariance *= noise[b];
    std::vector<LagBin> others = bins;
    for (LagBin& bin : others)
    {
        bin.meanLag *= 1000.0;
        bin.semivariance *= 1e6;
    }

    const SphericalFit fit = fitSpherical(bins);
    const SphericalFit other = fitSpherical(others);

    EXPECT_NEAR(other.sill / fit.sill, 1e6, 1.0);
    EXPECT_NEAR(other.range / fit.range, 1000.0, 1e-3);
    EXPECT_NEAR(other.nuggetFraction, fit.nuggetFraction, 1e-6);
}

TEST(SemivariogramFitTest, ALevelSemivariogramIsAllNugget)
{
    const SphericalFit fit = fitSpherical(binsOf([](double) { return 4.0; }));

    EXPECT_NEAR(fit.sill, 4.0, 1e-9);
    EXPECT_NEAR(fit.evaluate(0.1), 4.0, 1e-9);
    EXPECT_NEAR(fit.evaluate(1.5), 4.0, 1e-9);
}

TEST(SemivariogramFitTest, AFallingSemivariogramIsAllNugget)
{
    const SphericalFit fit = fitSpherical(binsOf([](double lag) { return 4.0 - lag; }));

    EXPECT_NEAR(fit.nuggetFraction, 1.0, 1e-9);
    EXPECT_FALSE(fit.isRangeAtUpperBound);
}

TEST(SemivariogramFitTest, AnEverRisingSemivariogramStopsAtTheBoundAndSaysSo)
{
    const SphericalFit fit = fitSpherical(binsOf([](double lag) { return 3.0 * lag; }));

    EXPECT_TRUE(fit.isRangeAtUpperBound);
    EXPECT_NEAR(fit.range, 6.0, 1e-6);
    EXPECT_NEAR(fit.evaluate(0.7), 2.1, 0.02);
    EXPECT_NEAR(fitSpherical(binsOf([](double lag) { return 3.0 * lag; }), 20.0).range, 20.0, 1e-5);
}

TEST(SemivariogramFitTest, ReplicatesTellTheNugget)
{
    std::vector<LagBin> bins = binsOf([](double lag) { return spherical(lag, 0.5, 2.0, 0.9); });
    bins.insert(bins.begin(), {0.0, 0.05, 0.0, 0.5, 0.0, 40});

    const SphericalFit fit = fitSpherical(bins);

    EXPECT_NEAR(fit.sill * fit.nuggetFraction, 0.5, 1e-6);
}

TEST(SemivariogramFitTest, FieldsAreFittedByWhatTheyWereMadeFrom)
{
    const ModelSettings truth{-1.0, {}, 0, 0.25, 0.3, 0};
    const std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 150, 0.0, 1.0, 7);
    double sumSill = 0.0;
    double sumNugget = 0.0;
    double sumLogRange = 0.0;
    constexpr int numFields = 20;
    for (int k = 0; k < numFields; ++k)
    {
        const auto samples = fenn::test::simulatedField(inputs, truth, 4.0, 50.0, static_cast<std::uint64_t>(900 + k));
        const auto parts = fenn::estimation::makeModelParts(samples, truth);
        const SphericalFit fit = fitSpherical(fenn::test::binnedSemivariogram(*parts, 0, 15));
        sumSill += fit.sill;
        sumNugget += fit.nuggetFraction;
        sumLogRange += std::log(fenn::analysis::toRangeFraction(*parts, fit.range));
    }
    EXPECT_NEAR(sumSill / numFields, 4.0, 0.6);
    EXPECT_NEAR(sumNugget / numFields, 0.3, 0.1);
    EXPECT_NEAR(std::exp(sumLogRange / numFields), 0.25, 0.06);
}

TEST(SemivariogramFitTest, WhatCannotBeFittedIsRefused)
{
    const std::vector<LagBin> bins = binsOf([](double lag) { return spherical(lag, 0.0, 1.0, 1.0); });

    EXPECT_THROW(fitSpherical({}), std::invalid_argument);
    EXPECT_THROW(fitSpherical({bins[0], bins[1]}), std::invalid_argument);
    EXPECT_THROW(fitSpherical(binsOf([](double) { return 0.0; })), std::invalid_argument);
    EXPECT_THROW(fitSpherical(bins, 0.05), std::invalid_argument);
    EXPECT_THROW(fitSpherical(bins, std::nan("")), std::invalid_argument);
}

} // namespace
