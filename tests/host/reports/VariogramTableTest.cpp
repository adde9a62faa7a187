#include "host/reports/VariogramTable.h"

#include <gmock/gmock.h>

#include "estimation/makeModelParts.h"

using fenn::analysis::LagBin;
using fenn::estimation::SampleSet;

TEST(VariogramTableTest, BinsAreLinesOfCsv)
{
    EXPECT_EQ(krige::csvOfBins({LagBin{0.0, 0.5, 0.25, 1.5, 2.0, 7}, LagBin{0.5, 1.0, 0.1 + 0.2, 3.0, 4.0, 1}}),
              "lower_lag,upper_lag,mean_lag,semivariance,model,pairs\n"
              "0,0.5,0.25,1.5,2,7\n"
              "0.5,1,0.30000000000000004,3,4,1\n");
}

TEST(VariogramTableTest, WithoutBinsTheHeaderRowIsLeft)
{
    EXPECT_EQ(krige::csvOfBins({}), "lower_lag,upper_lag,mean_lag,semivariance,model,pairs\n");
}

TEST(VariogramTableTest, EveryLagHasALineBelowTwoHeaderLines)
{
    const SampleSet samples({{0, 1, 2}}, {{5, 6, 9}});
    const auto parts = fenn::estimation::makeModelParts(samples, {});
    const std::vector<fenn::LagGroup> groups = krige::lagGroupsOfModel(*parts, "s.csv");

    ASSERT_EQ(groups.size(), 3u);
    EXPECT_EQ(groups[0].numPairs, 3);    // each point with itself
    EXPECT_EQ(groups[1].numPairs, 4);    // neighbours, in both orders
    EXPECT_EQ(groups[1].empirical, 2.5); // half the mean of 1 and 9
    EXPECT_EQ(groups[2].numPairs, 2);
    const std::string dump = krige::dumpOfGroups(*parts, groups);
    EXPECT_EQ(std::count(dump.begin(), dump.end(), '\n'), 5);
}
