#include "host/model/SettingsFile.h"

#include <limits>

#include <gtest/gtest.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::Settings;
using krige::SillChoice;
using krige::test::TemporaryFolder;

namespace
{

Settings readBack(const Settings& settings)
{
    const TemporaryFolder folder;
    Settings result;
    result.driftOrder = 4; // anything but what is written
    result.numNearestPoints = 99;
    krige::readSettingsFile(folder.write("s.toml", krige::settingsFileText(settings)), result);
    return result;
}

} // namespace

TEST(SettingsFileTest, WhatIsWrittenReadsBackToTheSameBits)
{
    Settings settings;
    settings.duplicateTolerance = 1e-7;
    settings.scaleFactors = {1.0 / 3.0, -2.0, 1e-100};
    settings.driftOrder = 2;
    settings.rangeFraction = 0.1 + 0.2;
    settings.nugget = 5e-324;
    settings.numNearestPoints = 32;
    settings.sills = {{SillChoice::Rule::Given, 0.1 + 0.2}, {}, {SillChoice::Rule::Sample, 0.0}};

    const Settings result = readBack(settings);

    EXPECT_EQ(result.duplicateTolerance, settings.duplicateTolerance);
    EXPECT_EQ(result.scaleFactors, settings.scaleFactors);
    EXPECT_EQ(result.driftOrder, settings.driftOrder);
    EXPECT_EQ(result.rangeFraction, settings.rangeFraction);
    EXPECT_EQ(result.nugget, settings.nugget);
    EXPECT_EQ(result.numNearestPoints, settings.numNearestPoints);
    EXPECT_EQ(result.sills, settings.sills);
}

TEST(SettingsFileTest, ARangeInInputUnitsIsAText)
{
    Settings settings;
    settings.rangeInInputUnits = 0.1 + 0.2;

    EXPECT_NE(krige::settingsFileText(settings).find("\nrange = \"0.30000000000000004u\"\n"), std::string::npos);
    EXPECT_EQ(readBack(settings).rangeInInputUnits, settings.rangeInInputUnits);
}

TEST(SettingsFileTest, TextsInAnArrayKeepTheirQuotesApart)
{
    const TemporaryFolder folder;
    Settings settings;
    krige::readSettingsFile(folder.write("s.toml", "sill = [\"auto\", \"sample\"]\n"), settings);

    ASSERT_EQ(settings.sills.size(), 2u);
    EXPECT_EQ(settings.sills[1].rule, krige::SillChoice::Rule::Sample);
}

TEST(SettingsFileTest, DefaultsReadBackAsDefaults)
{
    const Settings result = readBack(Settings());

    EXPECT_EQ(result.duplicateTolerance, -1.0);
    EXPECT_TRUE(result.scaleFactors.empty());
    EXPECT_EQ(result.driftOrder, 0);
    EXPECT_EQ(result.rangeFraction, 1.0);
    EXPECT_EQ(result.nugget, 0.0);
    EXPECT_EQ(result.numNearestPoints, 0);
    EXPECT_TRUE(result.sills.empty());
}

TEST(SettingsFileTest, TheFormOfTheDataIsKeptToTheSameBits)
{
    Settings settings;
    settings.anisotropy.emplace(1.0 / 0.3, 100.0 / 3.0);
    settings.scaleFactors = {1.0, 1.0};
    settings.units.areLogarithms = true;
    settings.units.limits = {0.1 + 0.2, std::numeric_limits<double>::infinity()};

    EXPECT_TRUE(readBack(settings).anisotropy == settings.anisotropy);
    EXPECT_TRUE(readBack(settings).units == settings.units);
    EXPECT_EQ(readBack(settings).scaleFactors, settings.scaleFactors);
    EXPECT_EQ(krige::settingsFileText(settings).find("scale"), std::string::npos);
    EXPECT_TRUE(readBack(Settings()).units == Settings().units);
}

TEST(SettingsFileTest, AnAnisotropyBesideScaleFactorsIsRefused)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("s.toml", "scale = [1, 2]\nanisotropy = [2, 30]\n");
    Settings settings;

    EXPECT_EQ(krige::test::messageOf<krige::InputError>([&] { krige::readSettingsFile(path, settings); }),
              path + ", line 2: 'anisotropy' takes the place of 'scale'; keep one of them");
}

TEST(SettingsFileTest, KeysThatAreLeftOutKeepTheirValues)
{
    const TemporaryFolder folder;
    Settings settings;
    settings.nugget = 0.25;
    krige::readSettingsFile(folder.write("s.toml", "scale = 1, 2\n"), settings);

    EXPECT_EQ(settings.nugget, 0.25);
    EXPECT_EQ(settings.scaleFactors, (std::vector<double>{1.0, 2.0}));
}

TEST(SettingsFileTest, WhetherDuplicatesAreKeptReadsBack)
{
    Settings settings;
    settings.keepsDuplicates = true;

    EXPECT_TRUE(readBack(settings).keepsDuplicates);
    EXPECT_EQ(readBack(settings).duplicateTolerance, -1.0);
    EXPECT_FALSE(readBack(Settings()).keepsDuplicates);
}

TEST(SettingsFileTest, DuplicatesThatAreNotMergedAndAToleranceContradictEachOther)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("s.toml", "duplicate-tolerance = 0\nduplicates = \"keep\"\n");
    Settings settings;

    EXPECT_EQ(krige::test::messageOf<krige::InputError>([&] { krige::readSettingsFile(path, settings); }),
              path + ", line 2: duplicates keep merges no samples, duplicate-tolerance 0 does; leave one of them out");
}
