// What a request of the all-points controller throws, and what it leaves behind, when some of its targets fail.

#include <chrono>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "tests/support/BitComparison.h"
#include "tests/support/FunctionSemivariogram.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

constexpr std::size_t numTargets = 30;

/// A target near this coordinate makes the model throw the exception of that kind.
constexpr double throwsRuntimeError = 1000.0;
constexpr double throwsRuntimeErrorLate = 2000.0;
constexpr double throwsBadAlloc = 3000.0;
constexpr double overflows = 1e153; // the weights, beyond 1e150

double throwingModel(const std::vector<double>& separation)
{
    const double lag = std::fabs(separation[0]);
    if (std::fabs(lag - throwsRuntimeError) < 100.0)
        throw std::runtime_error("early");
    if (std::fabs(lag - throwsRuntimeErrorLate) < 100.0)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        throw std::runtime_error("late");
    }
    if (std::fabs(lag - throwsBadAlloc) < 100.0)
        throw std::bad_alloc();
    return oneSidedModel(separation);
}

/// A request of 30 targets, on 3 threads unless a test says otherwise: ranges [0, 10), [10, 20) and [20, 30).
class AllPtsKrigingControllerFailureTest : public testing::Test
{
protected:
    explicit AllPtsKrigingControllerFailureTest(int maxThreads = 3)
        : controller(&samples.block(), &semivariogram, 1, maxThreads)
    {
    }

    void request()
    {
        controller.interpolate(targets.arrays(), {0}, static_cast<int>(numTargets), values.arrays(),
                               variances.arrays());
    }

    /// What the targets give, each by itself.
    NaiveRequest expected(const ValueArrays& requested)
    {
        const NaiveKriging kriging(samples, samples.unblankedPts(), oneSidedModel, 1);
        NaiveLinearSystem factors(kriging.rows());
        factors.factorise();
        return naiveRequest(requested, numTargets, 1,
                            [&](const std::vector<double>& target)
                            { return kriging.evaluate(factors, target, {0.0}); });
    }

    /// Every target has its value but those that are named.
    void expectAllButUnwritten(const std::set<std::size_t>& missing)
    {
        NaiveRequest all = expected(sound);
        for (const std::size_t t : missing)
            all.values[0][t] = all.variances[t] = unwritten;
        EXPECT_TRUE(sameBits(values[0], all.values[0]));
        EXPECT_TRUE(sameBits(variances[0], all.variances));
    }

    SampleBlocks samples{SampleShape{1, 1, {15}, 0.0, 0}, 900};
    FunctionSemivariogram semivariogram{throwingModel};
    AllPtsKrigingController controller;
    ValueArrays sound{randomValues(1, numTargets, -1.0, 1.0, 901)};
    ValueArrays targets{randomValues(1, numTargets, -1.0, 1.0, 901)};
    ResultArrays values{1, numTargets};
    ResultArrays variances{1, numTargets};
};

} // namespace

TEST_F(AllPtsKrigingControllerFailureTest, AnOverflowReachesTheCaller)
{
    targets[0][17] = overflows;

    EXPECT_EQ(textOfError([&] { request(); }), "Value overflow");

    expectAllButUnwritten({17, 18, 19});
}

TEST_F(AllPtsKrigingControllerFailureTest, AnExceptionOfTheModelKeepsItsType)
{
    targets[0][29] = throwsBadAlloc;

    EXPECT_THROW(request(), std::bad_alloc);

    expectAllButUnwritten({29});
}

TEST_F(AllPtsKrigingControllerFailureTest, TheFailingRangeWithTheLowestTargetDecidesWhateverTheType)
{
    targets[0][5] = throwsRuntimeErrorLate;
    targets[0][10] = throwsBadAlloc;
    targets[0][20] = overflows;

    try
    {
        request();
        FAIL() << "nothing was thrown";
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_STREQ(error.what(), "late");
    }
    expectAllButUnwritten(
        {5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29});
}

TEST_F(AllPtsKrigingControllerFailureTest, WithinARangeTheFirstFailingTargetDecides)
{
    targets[0][12] = overflows;
    targets[0][13] = throwsRuntimeError;

    EXPECT_EQ(textOfError([&] { request(); }), "Value overflow");

    expectAllButUnwritten({12, 13, 14, 15, 16, 17, 18, 19});
}

TEST_F(AllPtsKrigingControllerFailureTest, WithinARangeAnEarlierExceptionOfTheModelDecides)
{
    targets[0][12] = throwsRuntimeError;
    targets[0][13] = overflows;

    EXPECT_THROW(request(), std::runtime_error);

    expectAllButUnwritten({12, 13, 14, 15, 16, 17, 18, 19});
}

TEST_F(AllPtsKrigingControllerFailureTest, EveryOtherRangeIsFinishedWhenTheCallReturns)
{
    targets[0][0] = throwsRuntimeError;

    EXPECT_THROW(request(), std::runtime_error);

    expectAllButUnwritten({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
}

TEST_F(AllPtsKrigingControllerFailureTest, ARequestAfterAFailureIsWhole)
{
    targets[0][3] = throwsRuntimeError;
    targets[0][25] = overflows;
    EXPECT_THROW(request(), std::runtime_error);
    targets[0] = sound[0];

    request();

    expectAllButUnwritten({});
}

TEST_F(AllPtsKrigingControllerFailureTest, TwoRequestsAtOnceKeepTheirFailuresApart)
{
    targets[0][3] = throwsRuntimeError;
    const NaiveRequest whole = expected(sound);
    for (int round = 0; round < 20; ++round)
    {
        ResultArrays soundValues(1, numTargets);
        ResultArrays soundVariances(1, numTargets);
        std::string outcomeOfSound;
        std::thread other(
            [&]
            {
                try
                {
                    controller.interpolate(sound.arrays(), {0}, static_cast<int>(numTargets), soundValues.arrays(),
                                           soundVariances.arrays());
                    outcomeOfSound = "returned";
                }
                catch (...)
                {
                    outcomeOfSound = "thrown";
                }
            });

        EXPECT_THROW(request(), std::runtime_error);
        other.join();

        EXPECT_EQ(outcomeOfSound, "returned");
        EXPECT_TRUE(sameBits(soundValues[0], whole.values[0]));
        EXPECT_TRUE(sameBits(soundVariances[0], whole.variances));
    }
    expectAllButUnwritten({3, 4, 5, 6, 7, 8, 9});
}

TEST_F(AllPtsKrigingControllerFailureTest, TwoFailingRequestsAtOnceEachThrowTheirOwn)
{
    targets[0][3] = throwsRuntimeError;
    sound[0][28] = throwsBadAlloc;
    for (int round = 0; round < 20; ++round)
    {
        ResultArrays otherValues(1, numTargets);
        ResultArrays otherVariances(1, numTargets);
        bool otherThrewItsOwn = false;
        std::thread other(
            [&]
            {
                try
                {
                    controller.interpolate(sound.arrays(), {0}, static_cast<int>(numTargets), otherValues.arrays(),
                                           otherVariances.arrays());
                }
                catch (const std::bad_alloc&)
                {
                    otherThrewItsOwn = true;
                }
            });

        EXPECT_THROW(request(), std::runtime_error);
        other.join();

        EXPECT_TRUE(otherThrewItsOwn);
    }
}

class OneThreadFailureTest : public AllPtsKrigingControllerFailureTest
{
protected:
    OneThreadFailureTest() : AllPtsKrigingControllerFailureTest(1) {}
};

TEST_F(OneThreadFailureTest, NoTargetAfterTheFailingOneIsWritten)
{
    targets[0][28] = overflows;
    targets[0][2] = overflows;

    EXPECT_EQ(textOfError([&] { request(); }), "Value overflow");

    std::set<std::size_t> missing;
    for (std::size_t t = 2; t < numTargets; ++t)
        missing.insert(t);
    expectAllButUnwritten(missing);
}
