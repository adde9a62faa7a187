#include "host/model/Distance.h"

#include <gtest/gtest.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::Distance;
using krige::parseDistance;
using krige::UsageError;
using krige::test::messageOf;

namespace
{

std::string faultOf(const std::string& text)
{
    return messageOf<UsageError>([&] { parseDistance("--range", text); });
}

} // namespace

TEST(DistanceTest, AnUBehindTheNumberMeansTheInputsUnits)
{
    EXPECT_EQ(parseDistance("", " 9e2u ").value, 900.0);
    EXPECT_TRUE(parseDistance("", "9e2u").isInInputUnits);
    EXPECT_TRUE(parseDistance("", "900 u").isInInputUnits);
    EXPECT_EQ(parseDistance("", "0.3").value, 0.3);
    EXPECT_FALSE(parseDistance("", "0.3").isInInputUnits);
}

TEST(DistanceTest, WhatIsNoDistanceIsRefusedAsItWasTyped)
{
    EXPECT_EQ(faultOf("-1u"), "--range: must be at least 0, not '-1u'");
    EXPECT_EQ(faultOf("u"), "--range: 'u' is not a number");
    EXPECT_EQ(faultOf("900m"), "--range: '900m' is not a number");
    EXPECT_EQ(faultOf("900uu"), "--range: '900uu' is not a number");
    EXPECT_EQ(faultOf("nanu"), "--range: needs a finite number, not 'nanu'");
    EXPECT_EQ(faultOf(""), "--range: needs a finite number, not ''");
    EXPECT_EQ(faultOf("1e999u"), "--range: '1e999u' is too large for a double");
}

TEST(DistanceTest, ItsTextReadsBack)
{
    for (const Distance& distance : {Distance{0.1 + 0.2, false}, Distance{1e300, true}})
    {
        const Distance again = parseDistance("", formatDistance(distance));
        EXPECT_EQ(again.value, distance.value);
        EXPECT_EQ(again.isInInputUnits, distance.isInInputUnits);
    }
}

TEST(DistanceTest, TheWayOutHasAFactorForEachInput)
{
    EXPECT_NE(krige::suggestOneScale(3).find("add --scale 1,1,1 "), std::string::npos);
}
