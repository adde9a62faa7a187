#include "host/reports/VariogramTable.h"

#include <gtest/gtest.h>

using fenn::analysis::LagBin;
using krige::LagUnit;

TEST(VariogramTableTest, BinsAreLinesOfCsv)
{
    EXPECT_EQ(
        krige::csvOfBins({LagBin{0.0, 0.5, 0.25, 1.5, 2.0, 7}, LagBin{0.5, 1.0, 0.1 + 0.2, 3.0, 4.0, 1}}, LagUnit()),
        "lower_lag,upper_lag,mean_lag,semivariance,model,pairs\n"
        "0,0.5,0.25,1.5,2,7\n"
        "0.5,1,0.30000000000000004,3,4,1\n");
}

TEST(VariogramTableTest, LagsAreInTheirUnitAndNothingElseIs)
{
    EXPECT_EQ(krige::csvOfBins({LagBin{0.5, 1.0, 0.75, 3.0, 4.0, 1}}, LagUnit{100.0, "m"}),
              "lower_lag,upper_lag,mean_lag,semivariance,model,pairs\n"
              "50,100,75,3,4,1\n");
}

TEST(VariogramTableTest, WithoutBinsTheHeaderRowIsLeft)
{
    EXPECT_EQ(krige::csvOfBins({}, LagUnit()), "lower_lag,upper_lag,mean_lag,semivariance,model,pairs\n");
}
