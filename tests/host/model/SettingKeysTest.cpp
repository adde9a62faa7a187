#include "host/model/SettingKeys.h"

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::applySetting;
using krige::Settings;
using krige::UsageError;
using krige::test::messageOf;

namespace
{

std::string faultOf(const std::string& key, const std::string& text)
{
    Settings settings;
    return messageOf<UsageError>([&] { applySetting(settings, key, text); });
}

} // namespace

TEST(SettingKeysTest, EveryKeySetsItsOwnField)
{
    Settings settings;
    applySetting(settings, "duplicate-tolerance", "0.25");
    applySetting(settings, "scale", "1,-2");
    applySetting(settings, "drift", "3");
    applySetting(settings, "range", "0.5");
    applySetting(settings, "nugget", "0.125");
    applySetting(settings, "nearest", "32");
    applySetting(settings, "sill", "sample,2.5");
    applySetting(settings, "transform", "log");
    applySetting(settings, "clamp", "0:7.5");

    Settings expected;
    expected.duplicateTolerance = 0.25;
    expected.scaleFactors = {1.0, -2.0};
    expected.driftOrder = 3;
    expected.rangeFraction = 0.5;
    expected.nugget = 0.125;
    expected.numNearestPoints = 32;
    expected.sills = {{krige::SillChoice::Rule::Sample, 0.0}, {krige::SillChoice::Rule::Given, 2.5}};
    expected.units = {true, {0.0, 7.5}};
    EXPECT_TRUE(settings == expected);
    EXPECT_EQ(krige::settingKeys().size(), 11u); // and duplicates, and anisotropy
}

TEST(SettingKeysTest, AnAnisotropyAndScaleFactorsTakeEachOthersPlace)
{
    Settings settings;
    applySetting(settings, "scale", "1,-2");
    applySetting(settings, "anisotropy", "2.5,30");
    ASSERT_TRUE(settings.anisotropy.has_value());
    EXPECT_EQ(settings.anisotropy->getRatio(), 2.5);
    EXPECT_EQ(settings.anisotropy->getAngle(), 30.0);
    EXPECT_EQ(settings.scaleFactors, (std::vector<double>{1.0, 1.0}));

    applySetting(settings, "scale", "1,-2");
    EXPECT_FALSE(settings.anisotropy.has_value());
}

TEST(SettingKeysTest, TheRangeIsAFractionOrInTheInputsUnits)
{
    Settings settings;
    applySetting(settings, "range", "900u");
    EXPECT_EQ(settings.rangeInInputUnits, 900.0);

    applySetting(settings, "range", "0.5"); // the later one wins
    EXPECT_EQ(settings.rangeFraction, 0.5);
    EXPECT_FALSE(settings.rangeInInputUnits);
}

TEST(SettingKeysTest, ARangeFractionAboveTenIsAnsweredWithTheUnits)
{
    EXPECT_EQ(faultOf("range", "900"), "range: must be a fraction of the diagonal of the samples' box, 0 to 10, not "
                                       "'900'; for a range in the inputs' units write 900u (and give inputs one scale: "
                                       "--scale 1,1)");
    Settings settings;
    EXPECT_NO_THROW(applySetting(settings, "range", "10"));
}

TEST(SettingKeysTest, AnUnknownKeyIsAnsweredWithThoseThereAre)
{
    EXPECT_EQ(faultOf("drfit", "1"),
              "'drfit' is no setting; the settings are duplicates, duplicate-tolerance, "
              "scale, drift, range, nugget, nearest, sill, anisotropy, transform, clamp; did you mean 'drift'?");
}

TEST(SettingKeysTest, AValueOutOfBoundsIsAnsweredWithTheBounds)
{
    EXPECT_EQ(faultOf("drift", "5"), "drift: must be a whole number from 0 to 4, not '5'");
    EXPECT_EQ(faultOf("drift", "1.0"), "drift: must be a whole number from 0 to 4, not '1.0'");
    EXPECT_EQ(faultOf("range", "-1"), "range: must be at least 0, not '-1'");
    EXPECT_EQ(faultOf("nugget", "1.5"), "nugget: must be between 0 and 1, not '1.5'");
    EXPECT_EQ(faultOf("nearest", "-3"), "nearest: must be a whole number of at least 0, not '-3'");
}

TEST(SettingKeysTest, WhatIsNoFiniteNumberIsRefused)
{
    EXPECT_EQ(faultOf("nugget", "small"), "nugget: 'small' is not a number");
    EXPECT_EQ(faultOf("range", "inf"), "range: needs a finite number, not 'inf'");
    EXPECT_EQ(faultOf("scale", "1,,2"), "scale: needs a finite number, not ''");
    EXPECT_EQ(faultOf("scale", ""), "scale: needs one number per input");
}

TEST(SettingKeysTest, ARefusedValueLeavesTheSettingAlone)
{
    Settings settings;
    settings.driftOrder = 2;

    EXPECT_THROW(applySetting(settings, "drift", "9"), UsageError);
    EXPECT_EQ(settings.driftOrder, 2);
}

TEST(SettingKeysTest, TheMessageBeginsWithTheNameThatWasTyped)
{
    Settings settings;
    const krige::SettingKey& drift = krige::findSettingKey("drift");

    EXPECT_THAT(messageOf<UsageError>([&] { drift.apply(settings, "--drift", "x"); }), testing::StartsWith("--drift:"));
}

TEST(SettingKeysTest, DuplicatesAreAnErrorMergedOrKept)
{
    Settings settings;
    applySetting(settings, "duplicates", "merge");
    EXPECT_EQ(settings.duplicateTolerance, 0.0);
    EXPECT_FALSE(settings.keepsDuplicates);
    applySetting(settings, "duplicates", "keep");
    EXPECT_EQ(settings.duplicateTolerance, -1.0);
    EXPECT_TRUE(settings.keepsDuplicates);
    applySetting(settings, "duplicates", "error");
    EXPECT_TRUE(settings == Settings());
    EXPECT_EQ(faultOf("duplicates", "drop"), "duplicates: must be error, merge or keep, not 'drop'");
}

TEST(SettingKeysTest, MergingKeepsAToleranceThatWasGivenAndAToleranceMerges)
{
    Settings settings;
    applySetting(settings, "duplicate-tolerance", "0.25");
    applySetting(settings, "duplicates", "merge");
    EXPECT_EQ(settings.duplicateTolerance, 0.25);
    settings.keepsDuplicates = true;
    applySetting(settings, "duplicate-tolerance", "0");
    EXPECT_FALSE(settings.keepsDuplicates);
}
