// Failures in the middle of a request: what is thrown, what is written, what is left running, what comes next.

#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/TargetRanges.h"
#include "tests/reliability/DoctoredSystem.h"
#include "tests/support/BitComparison.h"
#include "tests/support/NaiveKriging.h"
#include "tests/support/NaiveSearch.h"
#include "tests/support/NaiveSpherical.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/ThreadCount.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

constexpr int numThreadsOfPool = 3;
constexpr int numNeighbours = 8;
constexpr double overflows = 1e153; // under a linear drift the weights follow it beyond 1e150
constexpr std::size_t numInputVars = 2;
constexpr std::size_t numOutputVars = 3;

/// A target index of a range of so many targets.
std::vector<std::size_t> firstMiddleAndLast(std::size_t count)
{
    return {0, count / 2, count - 1};
}

/// Targets and what the plain loops give for each of them.
struct Request
{
    template <typename Evaluate>
    Request(std::size_t numTargets_, Evaluate evaluate)
        : numTargets(numTargets_),
          sound(randomValues(numInputVars, numTargets, -1.0, 1.0, 41)),
          targets(randomValues(numInputVars, numTargets, -1.0, 1.0, 41)),
          expected(naiveRequest(sound, numTargets, numOutputVars, evaluate))
    {
        EXPECT_EQ(expected.failure, "");
        EXPECT_EQ(evaluate({overflows, 0.0}).failure, "Value overflow");
    }

    std::size_t numTargets;
    ValueArrays sound;
    ValueArrays targets;
    NaiveRequest expected;
};

/// Samples under a linear drift, with both controllers' plain loops. Targets are answered in one range per thread.
class ErrorsInFlightTest : public testing::Test
{
protected:
    std::vector<SourcePointRef> nearestPts(const std::vector<double>& target) const
    {
        return naiveNearestPts(samples, target, numNeighbours);
    }

    Request globalRequest(std::size_t numTargets) const
    {
        const NaiveKriging kriging(samples, samples.unblankedPts(), naive, 1);
        NaiveLinearSystem factors(kriging.rows());
        EXPECT_EQ(factors.factorise(), "");
        return {numTargets, [&](const std::vector<double>& target)
                {
                    return kriging.evaluate(factors, target, {0.0, 0.0, 0.0});
                }};
    }

    Request localRequest(std::size_t numTargets) const
    {
        std::vector<SourcePointRef> neighbours;
        return {numTargets, [&](const std::vector<double>& target)
                {
                    const auto found = nearestPts(target);
                    neighbours = found.empty() ? neighbours : found; // too far away: those of the target before
                    return NaiveKriging(samples, neighbours, naive, 1).evaluate(target, {0.0, 0.0, 0.0});
                }};
    }

    /// Makes the request, and expects the error's text and every target's value but those that are missing.
    static void expectOutcome(KrigingControllerAbstract& controller, Request& request, const std::string& text,
                              const std::set<std::size_t>& missing, const std::set<int>& outputVars,
                              bool wantsVariances)
    {
        ResultArrays values(outputVars.size(), request.numTargets);
        ResultArrays variances(wantsVariances ? outputVars.size() : 0, request.numTargets);

        EXPECT_EQ(textOfError(
                      [&]
                      {
                          controller.interpolate(request.targets.arrays(), outputVars,
                                                 static_cast<int>(request.numTargets), values.arrays(),
                                                 variances.arrays());
                      }),
                  text);

        NaiveRequest expected = request.expected;
        for (const std::size_t t : missing)
        {
            for (std::vector<double>& output : expected.values)
                output[t] = unwritten;
            expected.variances[t] = unwritten;
        }
        std::size_t k = 0;
        for (const int outputVar : outputVars)
        {
            EXPECT_TRUE(sameBits(values[k], expected.values[static_cast<std::size_t>(outputVar)]));
            if (wantsVariances)
            {
                EXPECT_TRUE(sameBits(variances[k], expected.variances));
            }
            ++k;
        }
    }

    /// The targets at that place of each of the chosen ranges overflow: each range stops there, and the next request,
    /// of sound targets, is whole.
    static void expectRangesToStop(KrigingControllerAbstract& controller, Request& request,
                                   const std::vector<fenn::TargetRange>& failingRanges, std::size_t place)
    {
        for (const bool wantsVariances : {false, true})
        {
            for (const std::set<int>& outputVars : {std::set<int>{1}, std::set<int>{0, 1, 2}})
            {
                SCOPED_TRACE(testing::Message() << outputVars.size() << " outputs, variances " << wantsVariances);
                std::set<std::size_t> missing;
                for (const fenn::TargetRange& range : failingRanges)
                {
                    const auto first = static_cast<std::size_t>(range.first);
                    const std::size_t failing = firstMiddleAndLast(static_cast<std::size_t>(range.count))[place];
                    request.targets[0][first + failing] = overflows;
                    for (std::size_t t = failing; t < static_cast<std::size_t>(range.count); ++t)
                        missing.insert(first + t);
                }
                expectOutcome(controller, request, "Value overflow", missing, outputVars, wantsVariances);

                request.targets[0] = request.sound[0];
                expectOutcome(controller, request, "no Error", {}, outputVars, wantsVariances);
            }
        }
    }

    SampleBlocks samples{SampleShape{numInputVars, numOutputVars, {20}, 0.0, 0}, 40};
    const std::vector<double> low{-1.0, -1.0};
    const std::vector<double> high{1.0, 1.0};
    SphericalSemivariogram semivariogram{low, samples.normalizers, low, high, 0.7, 0.05};
    NaiveSemivariogram naive{naiveSpherical(scalesOf(samples.normalizers), low, high, 0.7, 0.05)};
};

} // namespace

TEST_F(ErrorsInFlightTest, AnOverflowAnywhereStopsItsOwnRangesOfAGlobalRequest)
{
    AllPtsKrigingController controller(&samples.block(), &semivariogram, 1, numThreadsOfPool);
    for (const std::size_t numTargets : {3U, 32U, 300U}) // of the last, a range is more than three batches long
    {
        Request request = globalRequest(numTargets);
        const auto ranges = fenn::splitTargets(static_cast<int>(numTargets), numThreadsOfPool);
        ASSERT_EQ(ranges.size(), 3U);
        for (const std::vector<std::size_t>& failing :
             {std::vector<std::size_t>{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}})
        {
            std::vector<fenn::TargetRange> failingRanges;
            for (const std::size_t r : failing)
                failingRanges.push_back(ranges[r]);
            for (const std::size_t place : {0U, 1U, 2U})
            {
                SCOPED_TRACE(testing::Message() << numTargets << " targets, " << failing.size() << " ranges from "
                                                << failing[0] << ", place " << place);
                expectRangesToStop(controller, request, failingRanges, place);
            }
        }
    }
}

TEST_F(ErrorsInFlightTest, AnOverflowAnywhereStopsTheOnlyRangeOfAPoolOfOneThread)
{
    AllPtsKrigingController controller(&samples.block(), &semivariogram, 1, 1);
    for (const std::size_t numTargets : {1U, 33U, 100U})
    {
        Request request = globalRequest(numTargets);
        for (const std::size_t place : {0U, 1U, 2U})
        {
            SCOPED_TRACE(testing::Message() << numTargets << " targets, place " << place);
            expectRangesToStop(controller, request, fenn::splitTargets(static_cast<int>(numTargets), 1), place);
        }
    }
}

TEST_F(ErrorsInFlightTest, AnOverflowAnywhereStopsALocalRequest)
{
    NPtsKrigingController controller(&samples.block(), &semivariogram, 1, numNeighbours);
    for (const std::size_t numTargets : {2U, 33U, 100U}) // a target that finds no points uses those of the one before
    {
        Request request = localRequest(numTargets);
        const int count = static_cast<int>(numTargets);
        for (const std::size_t place : {0U, 1U, 2U})
        {
            SCOPED_TRACE(testing::Message() << numTargets << " targets, place " << place);
            expectRangesToStop(controller, request, {{0, count}}, place);
        }
    }
}

TEST_F(ErrorsInFlightTest, ASingularFactorStopsEveryRangeBeforeItsFirstTarget)
{
    AllPtsKrigingController controller(&samples.block(), &semivariogram, 1, numThreadsOfPool);
    Request request = globalRequest(30);
    std::set<std::size_t> all;
    for (std::size_t t = 0; t < 30; ++t)
        all.insert(t);
    for (const int row : {0, 11, systemOf(controller).getDimension() - 1})
    {
        for (const bool wantsVariances : {false, true})
        {
            SCOPED_TRACE(testing::Message() << "row " << row << ", variances " << wantsVariances);
            {
                const DoctoredDiagonal doctored(controller, row);
                expectOutcome(controller, request, "Singular matrix", all, {0, 2}, wantsVariances);
            }
            expectOutcome(controller, request, "no Error", {}, {0, 2}, wantsVariances);
        }
    }
}

TEST_F(ErrorsInFlightTest, OfAnOverflowAndASingularFactorTheLowestRangesIsThrown)
{
    AllPtsKrigingController controller(&samples.block(), &semivariogram, 1, numThreadsOfPool);
    Request request = globalRequest(30);
    std::set<std::size_t> all;
    for (std::size_t t = 0; t < 30; ++t)
        all.insert(t);
    const DoctoredDiagonal doctored(controller, 0); // the last to be divided by: overflows come before it
    for (const std::size_t overflowing : {0U, 10U, 20U})
    {
        SCOPED_TRACE(overflowing);
        request.targets[0] = request.sound[0];
        request.targets[0][overflowing] = overflows;

        expectOutcome(controller, request, overflowing == 0 ? "Value overflow" : "Singular matrix", all, {0}, true);
    }
}

TEST_F(ErrorsInFlightTest, NoThreadIsLeftByFailingRequests)
{
    if (numThreadsAtStart == 0)
        GTEST_SKIP() << "the system does not list its threads";
    {
        AllPtsKrigingController global(&samples.block(), &semivariogram, 1, numThreadsOfPool);
        NPtsKrigingController local(&samples.block(), &semivariogram, 1, numNeighbours);
        Request request = globalRequest(30);
        Request requestOfLocal = localRequest(30);
        for (int round = 0; round < 10; ++round)
        {
            request.targets[0][15] = overflows;
            expectOutcome(global, request, "Value overflow", {15, 16, 17, 18, 19}, {0}, false);
            EXPECT_EQ(numThreadsLeft(), 0U);
            requestOfLocal.targets[0][29] = overflows;
            expectOutcome(local, requestOfLocal, "Value overflow", {29}, {0}, false);
            EXPECT_EQ(numThreadsLeft(), 0U);
        }
    }
    EXPECT_EQ(numThreadsLeft(), 0U);
}
