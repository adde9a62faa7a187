#include "estimation/ThreadCount.h"

#include <filesystem>
#include <fstream>
#include <limits>
#include <string>

#ifdef __linux__
#include <sched.h>
#endif
#include <unistd.h>

#include <gtest/gtest.h>

using namespace fenn::estimation;

namespace
{

constexpr double noLimit = std::numeric_limits<double>::infinity();

/// A folder with the files of control groups, removed again.
class ControlGroups
{
public:
    ControlGroups() : root(std::filesystem::temp_directory_path() / ("control_groups_" + std::to_string(getpid())))
    {
        std::filesystem::create_directories(root);
    }
    ControlGroups(const ControlGroups& other) = delete;
    ControlGroups& operator=(const ControlGroups& other) = delete;
    ~ControlGroups()
    {
        std::filesystem::remove_all(root);
    }

    void write(const std::string& path, const std::string& text) const
    {
        std::filesystem::create_directories((root / path).parent_path());
        std::ofstream(root / path) << text << "\n";
    }

    double grant(const std::string& membership) const
    {
        return grantedCores(membership, root.string());
    }

private:
    std::filesystem::path root;
};

} // namespace

TEST(ThreadCountTest, ANumberAboveZeroIsTaken)
{
    EXPECT_EQ(chooseThreadCount(1), 1);
    EXPECT_EQ(chooseThreadCount(7), 7);
}

TEST(ThreadCountTest, ZeroMeansTheAvailableCores)
{
    EXPECT_GE(availableCores(), 1);
    EXPECT_EQ(chooseThreadCount(0), availableCores());
}

#ifdef __linux__
TEST(ThreadCountTest, OnlyCoresThatTheProcessIsScheduledOnAreAvailable)
{
    cpu_set_t all;
    ASSERT_EQ(sched_getaffinity(0, sizeof all, &all), 0);
    int first = 0;
    while (!CPU_ISSET(first, &all))
        ++first;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(first, &one);

    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    const int cores = availableCores();
    ASSERT_EQ(sched_setaffinity(0, sizeof all, &all), 0);

    EXPECT_EQ(cores, 1);
}
#endif

TEST(ThreadCountTest, AGrantLimitsTheCoresAndIsRoundedUp)
{
    EXPECT_EQ(limitCores(8, noLimit), 8);
    EXPECT_EQ(limitCores(8, 8.5), 8);
    EXPECT_EQ(limitCores(8, 3.0), 3);
    EXPECT_EQ(limitCores(8, 2.5), 3);
    EXPECT_EQ(limitCores(8, 0.1), 1);
    EXPECT_EQ(limitCores(0, noLimit), 1);
}

TEST(ThreadCountTest, TheQuotaOfAControlGroupIsAShareOfItsPeriod)
{
    const ControlGroups groups;
    groups.write("jobs/mine/cpu.max", "250000 100000");
    EXPECT_EQ(groups.grant("0::/jobs/mine\n"), 2.5);
}

TEST(ThreadCountTest, AGroupAroundTheOwnOneCanGrantLess)
{
    const ControlGroups groups;
    groups.write("cpu.max", "800000 100000");
    groups.write("jobs/cpu.max", "50000 100000");
    groups.write("jobs/mine/cpu.max", "max 100000");
    EXPECT_EQ(groups.grant("0::/jobs/mine\n"), 0.5);
    EXPECT_EQ(groups.grant("0::/others\n"), 8.0);
    EXPECT_EQ(groups.grant("0::/\n"), 8.0);
}

TEST(ThreadCountTest, GroupsOfTheFirstVersionAreReadWhereProcessorTimeIsListed)
{
    const ControlGroups groups;
    groups.write("cpu,cpuacct/mine/cpu.cfs_quota_us", "300000");
    groups.write("cpu,cpuacct/mine/cpu.cfs_period_us", "100000");
    groups.write("cpuset/mine/cpu.cfs_quota_us", "100000");
    groups.write("cpuset/mine/cpu.cfs_period_us", "100000");
    EXPECT_EQ(groups.grant("5:cpuset:/mine\n4:cpu,cpuacct:/mine\n0::/\n"), 3.0);
}

TEST(ThreadCountTest, MinusOneIsNoQuotaInTheFirstVersion)
{
    const ControlGroups groups;
    groups.write("cpu/cpu.cfs_quota_us", "-1");
    groups.write("cpu/cpu.cfs_period_us", "100000");
    EXPECT_EQ(groups.grant("4:cpu:/\n"), noLimit);
}

TEST(ThreadCountTest, WhatCannotBeReadSetsNoLimit)
{
    const ControlGroups groups;
    groups.write("mine/cpu.max", "many 100000");
    groups.write("others/cpu.max", "");
    EXPECT_EQ(groups.grant("0::/mine\n"), noLimit);
    EXPECT_EQ(groups.grant("0::/others\n"), noLimit);
    EXPECT_EQ(groups.grant("0::/gone\n"), noLimit);
    EXPECT_EQ(groups.grant(""), noLimit);
    EXPECT_EQ(groups.grant("no colons here\n:\n"), noLimit);
}
