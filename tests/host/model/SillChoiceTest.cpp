#include "host/model/SillChoice.h"

#include <gtest/gtest.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::SillChoice;
using krige::UsageError;
using krige::test::messageOf;

namespace
{

using Rule = SillChoice::Rule;

std::string faultOf(const std::string& text)
{
    return messageOf<UsageError>([&] { krige::parseSillChoices("--sill", text); });
}

std::string countFaultOf(const std::vector<SillChoice>& choices, std::size_t numOutputs)
{
    return messageOf<UsageError>([&] { krige::checkSillChoices(choices, numOutputs); });
}

} // namespace

TEST(SillChoiceTest, WordsAndNumbersStandSideBySide)
{
    const std::vector<SillChoice> expected{{Rule::Automatic, 0.0}, {Rule::Given, 12.5}, {Rule::Sample, 0.0}};

    EXPECT_EQ(krige::parseSillChoices("--sill", "auto,12.5,sample"), expected);
    EXPECT_EQ(krige::parseSillChoices("--sill", R"("auto", 12.5 , "sample")"), expected);
}

TEST(SillChoiceTest, WhatIsNoSillIsRefused)
{
    for (const char* const text : {"0", "-1", "nan", "inf", "1x", "AUTO", "auto sample", "1,,2"})
        EXPECT_NE(faultOf(text).find("--sill: must be auto, sample or a number above 0 for each output, not "),
                  std::string::npos)
            << text << ": " << faultOf(text);
    EXPECT_EQ(faultOf(""), "--sill: needs auto, sample or a number above 0 for each output");
    EXPECT_EQ(faultOf("1e999"), "--sill: '1e999' is too large for a double");
    EXPECT_NE(faultOf("1e-999").find("'1e-999' is too small"), std::string::npos);
}

TEST(SillChoiceTest, ASingleWordHoldsForEveryOutput)
{
    const std::vector<SillChoice> choices{{Rule::Sample, 0.0}};

    EXPECT_NO_THROW(krige::checkSillChoices(choices, 3));
    EXPECT_EQ(krige::chooseSill(choices, 2), choices[0]);
    EXPECT_EQ(krige::chooseSill({}, 2), SillChoice());
}

TEST(SillChoiceTest, NumbersAreNeededOncePerOutput)
{
    const std::vector<SillChoice> one{{Rule::Given, 1.0}};
    const std::vector<SillChoice> two{{Rule::Given, 1.0}, {Rule::Automatic, 0.0}};

    EXPECT_EQ(countFaultOf(one, 2), "--sill: 1 value for 2 outputs; give one each");
    EXPECT_EQ(countFaultOf(two, 1), "--sill: 2 values for 1 output; give one each");
    EXPECT_NO_THROW(krige::checkSillChoices(two, 2));
    EXPECT_EQ(krige::chooseSill(two, 1), two[1]);
}
