#include "estimation/MemoryForecast.h"

#include <gtest/gtest.h>

#include "estimation/SystemSize.h"

namespace
{

using fenn::estimation::calcCovarianceBytes;
using fenn::estimation::calcSystemBytes;
using fenn::estimation::forecastMemory;
using fenn::estimation::MemoryForecast;
using fenn::estimation::ModelSettings;

/// Five samples, the last two at one place.
const std::vector<std::vector<double>> fiveSamples{{0.0, 1.0, 2.0, 3.0, 3.0}};

TEST(MemoryForecastTest, AGlobalModelTakesTheSystemOfItsEngine)
{
    const MemoryForecast exact = forecastMemory(fiveSamples, {}, true);

    EXPECT_TRUE(exact.isGlobal);
    EXPECT_EQ(exact.numPoints, 5U);
    EXPECT_EQ(exact.bytes, calcSystemBytes(5, 1, 0));
    EXPECT_EQ(forecastMemory(fiveSamples, {}, false).bytes, calcCovarianceBytes(5, 1, 0));
}

TEST(MemoryForecastTest, MergedPointsAreNotCounted)
{
    ModelSettings settings;
    settings.duplicateTolerance = 0.0;

    EXPECT_EQ(forecastMemory(fiveSamples, settings, true).numPoints, 4U);
}

TEST(MemoryForecastTest, ALocalModelTakesOneSmallSystemWhicheverItsEngine)
{
    ModelSettings settings;
    settings.numNearestPoints = 3;

    const MemoryForecast forecast = forecastMemory(fiveSamples, settings, false);

    EXPECT_FALSE(forecast.isGlobal);
    EXPECT_EQ(forecast.bytes, calcSystemBytes(3, 1, 0));
}

TEST(MemoryForecastTest, ThisMachineHasSomeMemoryLeft)
{
    EXPECT_GT(fenn::estimation::findAvailableBytes(), 1e6);
}

TEST(MemoryForecastTest, BytesAreRoundedToThreeFigures)
{
    EXPECT_EQ(fenn::estimation::formatBytes(12), "12 bytes");
    EXPECT_EQ(fenn::estimation::formatBytes(1234), "1.23 kB");
    EXPECT_EQ(fenn::estimation::formatBytes(999.7e6), "1 GB");
    EXPECT_EQ(fenn::estimation::formatBytes(1.28e12), "1.28 TB");
}

} // namespace
