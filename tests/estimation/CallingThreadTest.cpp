// Which engines answer a single target without another thread. Threads are refused, so that asking for one is seen: a
// program of its own.

#include <atomic>
#include <vector>

#include <gtest/gtest.h>

#include "estimation/Estimator.h"
#include "estimation/ParallelRanges.h"
#include "estimation/chooseEstimator.h"
#include "tests/estimation/Samples.h"
#include "tests/support/ThreadRefusal.h"

namespace
{

using fenn::estimation::EstimatorOptions;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;

/// How many threads a request asked for.
int numThreadsAskedFor(const ModelSettings& settings, const EstimatorOptions& options, std::size_t numTargets)
{
    const SampleSet samples = fenn::test::smoothSamples(100, 3);
    const auto estimator = chooseEstimator(samples, settings, options);
    const std::vector<std::vector<double>> targets = fenn::test::randomValues(2, numTargets, 0.0, 1.0, 4);
    std::vector<std::vector<double>> estimates(2, std::vector<double>(numTargets));
    std::vector<double> variances(numTargets);

    const fenn::test::ThreadRefusal refusal(0);
    estimator->estimate({{targets[0].data(), targets[1].data()}, numTargets},
                        {{estimates[0].data(), estimates[1].data()}, variances.data()});
    return refusal.getNumRefused();
}

TEST(CallingThreadTest, ASingleTargetNeedsNoOtherThread)
{
    for (const bool isExact : {false, true})
    {
        for (const int numNearestPoints : {0, 8})
        {
            SCOPED_TRACE(testing::Message() << "exact " << isExact << ", nearest " << numNearestPoints);
            const EstimatorOptions options{2, isExact};

            EXPECT_EQ(numThreadsAskedFor({-1.0, {}, 1, 1.0, 0.1, numNearestPoints}, options, 1), 0);
        }
    }
}

TEST(CallingThreadTest, ManyTargetsOfALocalModelAskForThreadsAndAreAnsweredWithoutThem)
{
    // One run asks for the first of three further threads; the other two are not tried any more.
    EXPECT_EQ(numThreadsAskedFor({-1.0, {}, 1, 1.0, 0.1, 8}, {4, false}, 1000), 1);
}

TEST(CallingThreadTest, RangesThatGetNoThreadsAreDoneByTheCaller)
{
    fenn::estimation::ParallelRanges ranges(4);
    for (const int numGranted : {0, 1, 2})
    {
        const fenn::test::ThreadRefusal refusal(numGranted);
        std::atomic<std::size_t> sum{0};
        ranges.run(100, 1, [&](std::size_t, std::size_t first, std::size_t) { sum += first + 1; });

        EXPECT_EQ(sum, 5050U);
        EXPECT_EQ(refusal.getNumRefused(), numGranted < 2 ? 1 : 0); // three further ones in all
    }
}

/// What the first test would see.
TEST(CallingThreadTest, ManyTargetsOfAnExactGlobalModelAskForThreads)
{
    EXPECT_GT(numThreadsAskedFor({}, {2, true}, 1000), 0);
}

} // namespace
