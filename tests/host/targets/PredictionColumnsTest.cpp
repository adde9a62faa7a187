#include "host/targets/PredictionColumns.h"

#include <gtest/gtest.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::choosePredictionColumns;
using krige::PredictionRequest;
using krige::UsageError;
using krige::test::messageOf;

namespace
{

std::vector<std::string> namesFor(const PredictionRequest& request)
{
    return krige::namesOf(choosePredictionColumns({"a", "b"}, request));
}

std::string faultOf(const std::string& text)
{
    return messageOf<UsageError>([&] { krige::parseCoverage("--interval", text); });
}

} // namespace

TEST(PredictionColumnsTest, EstimatesComeFirst)
{
    EXPECT_EQ(namesFor({}), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(namesFor({true, 0.0}), (std::vector<std::string>{"a", "b", "variance", "a_stderr", "b_stderr"}));
    EXPECT_EQ(namesFor({false, 95.0}), (std::vector<std::string>{"a", "b", "a_lo", "a_hi", "b_lo", "b_hi"}));
    EXPECT_EQ(namesFor({true, 95.0}),
              (std::vector<std::string>{"a", "b", "variance", "a_stderr", "b_stderr", "a_lo", "a_hi", "b_lo", "b_hi"}));
}

TEST(PredictionColumnsTest, EstimatesAloneNeedNoVariances)
{
    EXPECT_FALSE(krige::needVariances(choosePredictionColumns({"a"}, {})));
    EXPECT_TRUE(krige::needVariances(choosePredictionColumns({"a"}, {true, 0.0})));
    EXPECT_TRUE(krige::needVariances(choosePredictionColumns({"a"}, {false, 50.0})));
}

TEST(PredictionColumnsTest, CoverageIsAPercentage)
{
    EXPECT_EQ(krige::parseCoverage("--interval", "95"), 95.0);
    EXPECT_EQ(krige::parseCoverage("--interval", " 99.9 "), 99.9);
    EXPECT_EQ(krige::parseCoverage("--interval", "1"), 1.0);
    for (const char* const text : {"100", "0", "-5", "nan", "inf", "95%", "", "99.99999999999999999", "1e999"})
        EXPECT_EQ(faultOf(text),
                  "--interval: must be a percentage from 1 to below 100, such as 95, not '" + std::string(text) + "'");
}

TEST(PredictionColumnsTest, AFractionIsTakenAsAMistake)
{
    EXPECT_EQ(faultOf("0.95"), "--interval: is in percent; '0.95' would be 95");
}
