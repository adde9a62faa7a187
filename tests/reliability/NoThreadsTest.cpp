// The system refuses to make threads: from the first on, from a later one on, or for a while.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/BitComparison.h"
#include "tests/support/FunctionSemivariogram.h"
#include "tests/support/GuardedPool.h"
#include "tests/support/Meeting.h"
#include "tests/support/ModelSample.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/SampleBlocks.h"
#include "tests/support/ThreadRefusal.h"

using namespace fenn::test;

namespace
{

using Estimates = std::vector<std::vector<double>>;

constexpr int numThreads = 4;
constexpr std::size_t numTargets = 50;

/// 320 samples, whose system several threads factorise, and a request of four ranges.
class NoThreadsTest : public testing::Test
{
protected:
    NoThreadsTest()
        : semivariogram(std::vector<int>(2), samples.normalizers, std::vector<double>(2, -1.0),
                        std::vector<double>(2, 1.0), 0.5, 0.05),
          expected(request(*makeController()))
    {
    }

    std::unique_ptr<AllPtsKrigingController> makeController()
    {
        return std::make_unique<AllPtsKrigingController>(&samples.block(), &semivariogram, 1, numThreads);
    }

    Estimates request(AllPtsKrigingController& controller)
    {
        ResultArrays values(1, numTargets);
        ResultArrays variances(1, numTargets);
        controller.interpolate(targets.arrays(), {0}, static_cast<int>(numTargets), values.arrays(),
                               variances.arrays());
        return {values[0], variances[0]};
    }

    void expectRightAnswer(AllPtsKrigingController& controller)
    {
        const Estimates actual = request(controller);
        EXPECT_TRUE(sameBits(actual[0], expected[0]));
        EXPECT_TRUE(sameBits(actual[1], expected[1]));
    }

    SampleBlocks samples{SampleShape{2, 1, {320}, 0.0, 0}, 80};
    SphericalSemivariogram semivariogram;
    ValueArrays targets{randomValues(2, numTargets, -1.0, 1.0, 81)};
    const Estimates expected;
};

/// The threads that the pieces of a job run on.
std::set<std::thread::id> runnersOf(GuardedPool& pool, int numPieces)
{
    std::mutex mutex;
    std::set<std::thread::id> runners;
    pool.run(numPieces,
             [&](int)
             {
                 const std::lock_guard<std::mutex> lock(mutex);
                 runners.insert(std::this_thread::get_id());
             });
    return runners;
}

/// Threads of this process that Qt has made for a pool, by the name that it gives them.
int numPoolThreads()
{
    int count = 0;
    for (const std::filesystem::directory_entry& thread : std::filesystem::directory_iterator("/proc/self/task"))
    {
        std::string name;
        std::getline(std::ifstream(thread.path() / "comm"), name);
        count += name.find("pooled") != std::string::npos ? 1 : 0;
    }
    return count;
}

std::set<std::thread::id> thisThreadOnly()
{
    return {std::this_thread::get_id()};
}

} // namespace

TEST_F(NoThreadsTest, AModelIsBuiltAskedAndDeletedHoweverManyThreadsThereAre)
{
    int numRefused = 0;
    for (int numGranted = 0;; ++numGranted)
    {
        SCOPED_TRACE(testing::Message() << numGranted << " threads");
        const ThreadRefusal refusal(numGranted);
        {
            const auto controller = makeController();
            expectRightAnswer(*controller);
            expectRightAnswer(*controller);
        }
        numRefused += refusal.getNumRefused();
        std::cout << numGranted << " threads granted, " << refusal.getNumRefused() << " refused\n";
        if (refusal.getNumRefused() == 0)
            break;
    }
    EXPECT_GT(numRefused, 0);
}

TEST_F(NoThreadsTest, AModelBuiltWithThreadsIsAskedWithoutThem)
{
    for (int numGranted = 0; numGranted < numThreads; ++numGranted)
    {
        SCOPED_TRACE(testing::Message() << numGranted << " threads");
        const auto controller = makeController();
        const ThreadRefusal refusal(numGranted);

        expectRightAnswer(*controller);

        // A thread that is through with its task early may run the others too.
        EXPECT_GE(refusal.getNumRefused(), numGranted == 0 ? 1 : 0);
    }
}

TEST_F(NoThreadsTest, APoolThatCannotBeWaitedForLeavesNoThreadRunning)
{
    std::atomic<int> numSeen{0};
    {
        GuardedPool pool(3);
        const ThreadRefusal refusal(2);
        pool.run(3,
                 [&](int)
                 {
                     while (refusal.getNumRefused() == 0) // else the first thread might serve for all
                         std::this_thread::yield();
                     numSeen += numPoolThreads();
                 });
    }
    EXPECT_GT(numSeen, 0);
    EXPECT_EQ(numPoolThreads(), 0);
}

TEST_F(NoThreadsTest, AfterAShortageAModelIsAskedAsBefore)
{
    const auto controller = makeController();
    {
        const ThreadRefusal refusal(1);
        expectRightAnswer(*controller);
    }

    for (int round = 0; round < 3; ++round)
        expectRightAnswer(*controller);
}

TEST_F(NoThreadsTest, SeveralThreadsOfTheHostAreAnsweredAtOnce)
{
    constexpr std::size_t numHosts = 4;
    const auto controller = makeController();
    Meeting refusalInForce(static_cast<int>(numHosts) + 1);
    std::vector<Estimates> answers(numHosts);
    std::vector<std::thread> hosts;
    for (Estimates& answer : answers)
    {
        hosts.emplace_back(
            [&]
            {
                refusalInForce.attend();
                for (int round = 0; round < 5; ++round)
                    answer = request(*controller);
            });
    }
    {
        const ThreadRefusal refusal(2);
        refusalInForce.attend();
        for (std::thread& host : hosts)
            host.join();
        EXPECT_GT(refusal.getNumRefused(), 0);
    }
    for (const Estimates& answer : answers)
    {
        EXPECT_TRUE(sameBits(answer[0], expected[0]));
        EXPECT_TRUE(sameBits(answer[1], expected[1]));
    }
}

TEST_F(NoThreadsTest, TheFailingRangeWithTheLowestTargetDecidesOnTheCallingThreadToo)
{
    FunctionSemivariogram throwing(
        [](const std::vector<double>& separation)
        {
            if (separation[0] > 900.0)
                throw std::runtime_error("far to the left");
            if (separation[0] < -900.0)
                throw std::runtime_error("far to the right");
            return oneSidedModel(separation);
        });
    SampleBlocks few(SampleShape{1, 1, {15}, 0.0, 0}, 82);
    for (const int numGranted : {0, 2})
    {
        AllPtsKrigingController controller(&few.block(), &throwing, 1, numThreads);
        ValueArrays given(randomValues(1, 40, -1.0, 1.0, 83));
        given[0][15] = 1000.0;
        given[0][25] = -1000.0;
        ResultArrays values(1, 40);
        std::vector<double*> noVariances;
        const ThreadRefusal refusal(numGranted);
        std::string text;

        try
        {
            controller.interpolate(given.arrays(), {0}, 40, values.arrays(), noVariances);
        }
        catch (const std::runtime_error& error)
        {
            text = error.what();
        }

        EXPECT_EQ(text, "far to the right");
        for (std::size_t t = 0; t < 40; ++t)
            EXPECT_EQ(values[0][t] == unwritten, (t >= 15 && t < 20) || (t >= 25 && t < 30)) << t;
    }
}

TEST_F(NoThreadsTest, TheExportedModelNeedsNoThreads)
{
    ModelSample plain(randomValues(2, 300, -1.0, 1.0, 84), randomValues(1, 300, 0.0, 1.0, 85));
    const Estimates places = randomValues(2, 100, -1.0, 1.0, 86);
    const Estimates withThreads = estimatesOf(plain.build(), places, {0});
    const ThreadRefusal refusal(0);

    const Estimates without = estimatesOf(plain.build(), places, {0});

    EXPECT_TRUE(sameBits(without[0], withThreads[0]));
}

TEST_F(NoThreadsTest, APoolThatWasRefusedAThreadIsNotAskedAgain)
{
    GuardedPool pool(2);
    {
        const ThreadRefusal refusal(0);
        EXPECT_EQ(runnersOf(pool, 2), thisThreadOnly());
    }

    EXPECT_EQ(runnersOf(pool, 2), thisThreadOnly());
}

TEST_F(NoThreadsTest, APoolThatWasRefusedOneOfItsThreadsIsNotAskedAgain)
{
    GuardedPool pool(3);
    {
        const ThreadRefusal refusal(1);
        pool.run(3,
                 [&](int)
                 {
                     while (refusal.getNumRefused() == 0) // else the one thread might be there for all pieces
                         std::this_thread::yield();
                 });
    }

    EXPECT_EQ(runnersOf(pool, 3), thisThreadOnly());
}

TEST_F(NoThreadsTest, DuringAShortageOtherPoolsAskForNoThreadsOfQt)
{
    GuardedPool first(2);
    const ThreadRefusal refusal(0);
    EXPECT_EQ(runnersOf(first, 2), thisThreadOnly());
    const int numRefusedFirst = refusal.getNumRefused();
    GuardedPool second(2);

    for (int round = 0; round < 4; ++round)
        EXPECT_EQ(runnersOf(second, 2), thisThreadOnly());

    EXPECT_EQ(refusal.getNumRefused() - numRefusedFirst, 4); // one attempt of our own each
}

TEST_F(NoThreadsTest, AfterAShortageOtherPoolsHaveTheirThreads)
{
    GuardedPool first(2);
    GuardedPool second(2);
    {
        const ThreadRefusal refusal(0);
        EXPECT_EQ(runnersOf(first, 2), thisThreadOnly());
        EXPECT_EQ(runnersOf(second, 2), thisThreadOnly());
    }

    // On a busy machine a thread may come too late for a piece, but not for all of them.
    int numElsewhere = 0;
    for (int round = 0; round < 20; ++round)
        numElsewhere += runnersOf(second, 2).count(std::this_thread::get_id()) == 0 ? 1 : 0;
    EXPECT_GT(numElsewhere, 0);
}

TEST_F(NoThreadsTest, AfterABusyPoolThreadsAreNotTakenForScarce)
{
    GuardedPool busy(1);
    GuardedPool other(1);
    std::thread second;
    busy.run(1,
             [&](int)
             {
                 second = std::thread([&] { busy.run(1, [](int) {}); });
                 std::this_thread::sleep_for(std::chrono::milliseconds(300)); // its caller's patience ends
             });
    second.join();
    const ThreadRefusal refusal(1000);

    other.run(1, [](int) {});

    EXPECT_EQ(refusal.getNumMade(), 1); // none of our own on trial
}

TEST_F(NoThreadsTest, ATaskThatWasLostBehindOneAtWorkIsDoneByTheCaller)
{
    GuardedPool pool(3);
    const ThreadRefusal refusal(1);
    std::vector<std::thread::id> runners(3);

    pool.run(3,
             [&](int piece)
             {
                 while (refusal.getNumRefused() < 2) // else the one thread might be there for a later piece too
                     std::this_thread::yield();
                 runners[static_cast<std::size_t>(piece)] = std::this_thread::get_id();
             });

    EXPECT_NE(runners[0], std::this_thread::get_id());
    EXPECT_EQ(runners[1], std::this_thread::get_id());
    EXPECT_EQ(runners[2], std::this_thread::get_id());
}

TEST_F(NoThreadsTest, ALostTaskIsNotWaitedForWhileOthersKeepThePoolAtWork)
{
    GuardedPool pool(2);
    std::atomic<bool> isOver{false};
    Meeting begun(2);
    const ThreadRefusal refusal(2); // the host's, and the pool's first
    std::thread host(
        [&]
        {
            pool.run(1,
                     [&](int)
                     {
                         begun.attend();
                         while (refusal.getNumRefused() == 0)
                             std::this_thread::yield();
                     });
            while (!isOver)
                pool.run(1, [](int) {});
        });
    begun.attend();
    std::vector<std::thread::id> runners(2);

    pool.run(2, [&](int piece) { runners[static_cast<std::size_t>(piece)] = std::this_thread::get_id(); });
    isOver = true;
    host.join();

    EXPECT_EQ(runners[0], std::this_thread::get_id());
}
