#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "estimation/CovarianceEstimator.h"
#include "estimation/ExactEstimator.h"
#include "estimation/LocalEstimator.h"
#include "estimation/makeModelParts.h"
#include "tests/estimation/DenseKriging.h"
#include "tests/estimation/Samples.h"
#include "tests/support/BitComparison.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/RunnableTargets.h"

namespace
{

using fenn::estimation::CovarianceEstimator;
using fenn::estimation::Estimator;
using fenn::estimation::ExactEstimator;
using fenn::estimation::LocalEstimator;
using fenn::estimation::makeModelParts;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::DenseKriging;
using fenn::test::DenseMatrix;
using fenn::test::ResultArrays;
using fenn::test::sameBits;
using fenn::test::smoothSamples;

using Columns = std::vector<std::vector<double>>;

/// mu^T f of a target whose system holds the numPoints points of the largest covariances, from the bordered
/// semivariogram system in long double.
double denseDriftProduct(const DenseKriging& dense, const std::vector<double>& target, std::size_t numPoints)
{
    const DenseMatrix c = dense.covariancesWith(target);
    const DenseMatrix f = dense.driftAt(target);
    const DenseMatrix system = dense.borderedSystem();
    std::vector<std::size_t> rows(system.getNumRows());
    std::iota(rows.begin(), rows.end(), std::size_t{0});
    const auto endOfPoints = rows.begin() + static_cast<std::ptrdiff_t>(dense.getNumPoints());
    std::stable_sort(rows.begin(), endOfPoints, [&](std::size_t a, std::size_t b) { return c(a, 0) > c(b, 0); });
    rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(numPoints), endOfPoints);

    DenseMatrix part(rows.size(), rows.size());
    DenseMatrix rightHandSide(rows.size(), 1);
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        for (std::size_t j = 0; j < rows.size(); ++j)
            part(i, j) = system(rows[i], rows[j]);
        rightHandSide(i, 0) = i < numPoints ? 1.0L - c(rows[i], 0) : f(i - numPoints, 0);
    }
    const DenseMatrix solution = part.solve(rightHandSide);
    long double sum = 0.0L;
    for (std::size_t i = numPoints; i < rows.size(); ++i)
        sum += solution(i, 0) * rightHandSide(i, 0);
    return static_cast<double>(sum);
}

std::vector<double> denseDriftProducts(const SampleSet& samples, const ModelSettings& settings, const Columns& targets)
{
    const DenseKriging dense(*makeModelParts(samples, settings), settings);
    std::vector<double> products;
    for (std::size_t t = 0; t < targets[0].size(); ++t)
        products.push_back(denseDriftProduct(dense, {targets[0][t], targets[1][t]},
                                             settings.numNearestPoints == 0
                                                 ? dense.getNumPoints()
                                                 : static_cast<std::size_t>(settings.numNearestPoints)));
    return products;
}

enum class Wanted
{
    Estimates,
    Variances,
    DriftProducts,
    Both
};

/// Two outputs, variances, drift products; what is not wanted stays unwritten.
Columns ask(const Estimator& estimator, const Columns& targets, std::size_t first, std::size_t count,
            Wanted wanted = Wanted::Both)
{
    ResultArrays estimates(2, count);
    ResultArrays others(2, count);
    const bool wantsVariances = wanted == Wanted::Variances || wanted == Wanted::Both;
    const bool wantsProducts = wanted == Wanted::DriftProducts || wanted == Wanted::Both;
    estimator.estimate({{targets[0].data() + first, targets[1].data() + first}, count},
                       {estimates.arrays(), wantsVariances ? others.arrays()[0] : nullptr,
                        wantsProducts ? others.arrays()[1] : nullptr});
    return {estimates[0], estimates[1], others[0], others[1]};
}

Columns askAll(const Estimator& estimator, const Columns& targets)
{
    return ask(estimator, targets, 0, targets[0].size());
}

/// Within the samples and beyond them; one at a sample.
Columns targetsNear(const SampleSet& samples, std::size_t numTargets)
{
    Columns targets = fenn::test::randomValues(2, numTargets, -0.3, 1.4, 99);
    for (std::size_t v = 0; v < 2; ++v)
        targets[v][numTargets / 2] = samples.getInput(v)[7];
    return targets;
}

void expectNear(const std::vector<double>& actual, const std::vector<double>& expected)
{
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t t = 0; t < actual.size(); ++t)
        EXPECT_NEAR(actual[t], expected[t], 1e-10 * std::max(1.0, std::fabs(expected[t]))) << "target " << t;
}

std::unique_ptr<Estimator> makeCovarianceForm(const SampleSet& samples, const ModelSettings& settings, int numThreads)
{
    std::string reason;
    auto estimator =
        CovarianceEstimator::makeWhereProven(makeModelParts(samples, settings), settings, numThreads, reason);
    EXPECT_NE(estimator, nullptr) << reason;
    return estimator;
}

/// Every engine that answers these settings: the exact one first.
std::vector<std::unique_ptr<Estimator>> enginesOf(const SampleSet& samples, const ModelSettings& settings,
                                                  int numThreads)
{
    std::vector<std::unique_ptr<Estimator>> engines;
    engines.push_back(std::make_unique<ExactEstimator>(makeModelParts(samples, settings), settings, numThreads, ""));
    if (settings.numNearestPoints == 0)
        engines.push_back(makeCovarianceForm(samples, settings, numThreads));
    else
        engines.push_back(std::make_unique<LocalEstimator>(makeModelParts(samples, settings), settings.driftOrder,
                                                           settings.numNearestPoints, numThreads));
    return engines;
}

/// Factors of 1: then all engines choose the same neighbours.
const std::vector<ModelSettings> globalAndLocal{
    {-1.0, {}, 0, 1.0, 0.05, 0}, {-1.0, {1.0, 3.0}, 1, 0.4, 0.2, 0}, {0.01, {}, 2, 0.9, 0.1, 0},
    {-1.0, {}, 4, 1.5, 0.3, 0},  {-1.0, {1.0, 1.0}, 0, 1.0, 0.1, 9}, {-1.0, {1.0, 1.0}, 2, 1.2, 0.0, 17}};

TEST(DriftProductTest, EveryEngineGivesThatOfTheDenseSystem)
{
    const SampleSet samples = smoothSamples(45, 5);
    const Columns targets = targetsNear(samples, 21);
    for (const ModelSettings& settings : globalAndLocal)
    {
        SCOPED_TRACE(testing::Message() << "drift " << settings.driftOrder << ", nearest "
                                        << settings.numNearestPoints);
        const std::vector<double> expected = denseDriftProducts(samples, settings, targets);
        fenn::test::forEachRunnableTarget(
            [&](const char* name)
            {
                SCOPED_TRACE(name);
                for (const std::unique_ptr<Estimator>& engine : enginesOf(samples, settings, 2))
                {
                    SCOPED_TRACE(engine->getReport().engine);
                    expectNear(askAll(*engine, targets)[3], expected);
                }
            });
    }
}

TEST(DriftProductTest, NeitherRequestsNorThreadsNorInstructionSetsChangeABit)
{
    const SampleSet samples = smoothSamples(60, 6);
    const Columns targets = targetsNear(samples, 75);
    for (const ModelSettings& settings : globalAndLocal)
    {
        for (std::size_t e = 0; e < 2; ++e)
        {
            const std::vector<double> expected = askAll(*enginesOf(samples, settings, 1)[e], targets)[3];
            fenn::test::forEachRunnableTarget(
                [&](const char* name)
                {
                    const std::unique_ptr<Estimator> engine = std::move(enginesOf(samples, settings, 3)[e]);
                    SCOPED_TRACE(testing::Message()
                                 << name << ", " << engine->getReport().engine << ", drift " << settings.driftOrder);
                    EXPECT_TRUE(sameBits(askAll(*engine, targets)[3], expected));
                    std::vector<double> singly;
                    for (std::size_t t = 0; t < targets[0].size(); ++t)
                        singly.push_back(ask(*engine, targets, t, 1)[3][0]);
                    EXPECT_TRUE(sameBits(singly, expected));
                });
        }
    }
}

TEST(DriftProductTest, AskingForItChangesNoBitOfEstimatesAndVariances)
{
    const SampleSet samples = smoothSamples(60, 7);
    const Columns targets = targetsNear(samples, 40);
    for (const ModelSettings& settings : globalAndLocal)
    {
        for (const std::unique_ptr<Estimator>& engine : enginesOf(samples, settings, 1))
        {
            for (const std::size_t count : {std::size_t{1}, std::size_t{40}})
            {
                SCOPED_TRACE(testing::Message() << engine->getReport().engine << ", " << count << " targets");
                const std::vector<double> nothing(count, fenn::test::unwritten);
                const Columns both = ask(*engine, targets, 0, count, Wanted::Both);
                const Columns products = ask(*engine, targets, 0, count, Wanted::DriftProducts);
                const Columns variances = ask(*engine, targets, 0, count, Wanted::Variances);

                for (std::size_t w = 0; w < 2; ++w)
                {
                    EXPECT_TRUE(sameBits(both[w], variances[w]));
                    EXPECT_TRUE(sameBits(products[w], variances[w]));
                }
                EXPECT_TRUE(sameBits(both[2], variances[2]));
                EXPECT_TRUE(sameBits(both[3], products[3]));
                EXPECT_EQ(products[2], nothing);
                EXPECT_EQ(variances[3], nothing);
            }
        }
    }
}

TEST(DriftProductTest, PointsLeftOutGetThatOfTheOthers)
{
    const SampleSet samples = smoothSamples(40, 9);
    const ModelSettings settings{-1.0, {1.0, 1.0}, 1, 1.1, 0.1, 10};
    const LocalEstimator local(makeModelParts(samples, settings), settings.driftOrder, settings.numNearestPoints, 1);
    ResultArrays estimates(2, 40);
    ResultArrays others(2, 40);

    local.estimateWithoutEach(0, 40, {estimates.arrays(), others.arrays()[0], others.arrays()[1]});

    // Eleven nearest of a point are itself and the ten others; with its own row and column left out of the dense system
    // nothing but those is used.
    const DenseKriging dense(*makeModelParts(samples, settings), settings);
    const DenseMatrix system = dense.borderedSystem();
    for (std::size_t i = 0; i < 40; ++i)
    {
        const std::vector<double> place{samples.getInput(0)[i], samples.getInput(1)[i]};
        const DenseMatrix c = dense.covariancesWith(place);
        std::vector<std::size_t> rows(40);
        std::iota(rows.begin(), rows.end(), std::size_t{0});
        std::stable_sort(rows.begin(), rows.end(), [&](std::size_t a, std::size_t b) { return c(a, 0) > c(b, 0); });
        rows.erase(rows.begin());
        rows.resize(10);
        for (std::size_t k = 40; k < system.getNumRows(); ++k)
            rows.push_back(k);
        DenseMatrix part(rows.size(), rows.size());
        DenseMatrix rightHandSide(rows.size(), 1);
        for (std::size_t a = 0; a < rows.size(); ++a)
        {
            for (std::size_t b = 0; b < rows.size(); ++b)
                part(a, b) = system(rows[a], rows[b]);
            rightHandSide(a, 0) = system(rows[a], i);
        }
        const DenseMatrix solution = part.solve(rightHandSide);
        long double expected = 0.0L;
        for (std::size_t a = 10; a < rows.size(); ++a)
            expected += solution(a, 0) * rightHandSide(a, 0);
        EXPECT_NEAR(others[1][i], static_cast<double>(expected), 1e-10) << "point " << i;
    }
}

} // namespace
