#include "estimation/ModelSettings.h"

#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/estimation/Samples.h"

namespace
{

using fenn::estimation::checkSettings;
using fenn::estimation::hasOneScale;
using fenn::estimation::isScalableRange;
using fenn::estimation::ModelSettings;
using fenn::estimation::usesAllPoints;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

std::string complaintAbout(const ModelSettings& settings)
{
    return fenn::test::messageOf<std::invalid_argument>([&] { checkSettings(settings, 2); });
}

TEST(ModelSettingsTest, DefaultsAreAccepted)
{
    EXPECT_NO_THROW(checkSettings({}, 1));
}

TEST(ModelSettingsTest, LimitsOfEverySettingAreAccepted)
{
    EXPECT_NO_THROW(checkSettings({0.0, {1e-9, -3.0}, 4, 0.0, 1.0, 1000000}, 2));
}

TEST(ModelSettingsTest, ComplaintsNameTheSettingAndItsValue)
{
    EXPECT_EQ(complaintAbout({notANumber, {}, 0, 1.0, 0.0, 0}), "the duplicate tolerance must be a number, not nan");
    EXPECT_EQ(complaintAbout({-1.0, {1.0}, 0, 1.0, 0.0, 0}),
              "there must be no scale factors or 2, one per input variable, not 1");
    EXPECT_EQ(complaintAbout({-1.0, {1.0, infinity}, 0, 1.0, 0.0, 0}), "a scale factor must be finite, not inf");
    EXPECT_EQ(complaintAbout({-1.0, {}, 5, 1.0, 0.0, 0}), "the drift order must be 0 to 4, not 5");
    EXPECT_EQ(complaintAbout({-1.0, {}, 0, -0.5, 0.0, 0}),
              "the range fraction must be finite and at least 0, not -0.5");
    EXPECT_EQ(complaintAbout({-1.0, {}, 0, 1.0, 1.5, 0}), "the nugget must be 0 to 1, not 1.5");
    EXPECT_EQ(complaintAbout({-1.0, {}, 0, 1.0, 0.0, -2}),
              "the number of nearest points must be 0 (all) or above, not -2");
    EXPECT_EQ(complaintAbout({-1.0, {1.0, 1.0}, 0, 1.0, 0.0, 0, -1.0}),
              "the range in input units must be finite and at least 0, not -1");
    EXPECT_EQ(complaintAbout({-1.0, {1.0, 1.0}, 0, 1.0, 0.0, 0, infinity}),
              "the range in input units must be finite and at least 0, not inf");
    EXPECT_EQ(complaintAbout({-1.0, {}, 0, 1.0, 0.0, 0, 20.0}),
              "a range in input units needs equal and positive scale factors");
}

TEST(ModelSettingsTest, NaNIsRefusedWhereverANumberIsNeeded)
{
    EXPECT_THROW(checkSettings({-1.0, {1.0, notANumber}, 0, 1.0, 0.0, 0}, 2), std::invalid_argument);
    EXPECT_THROW(checkSettings({-1.0, {}, 0, notANumber, 0.0, 0}, 2), std::invalid_argument);
    EXPECT_THROW(checkSettings({-1.0, {}, 0, 1.0, notANumber, 0}, 2), std::invalid_argument);
}

TEST(ModelSettingsTest, ScaleFactorsThatOnlyTheLibraryRefusesAreLeftToIt)
{
    EXPECT_NO_THROW(checkSettings({-1.0, {0.0, 1e200}, 0, 1.0, 0.0, 0}, 2));
}

TEST(ModelSettingsTest, OneScaleIsThatOfEqualPositiveFactorsOrOfASingleInput)
{
    ModelSettings settings;
    EXPECT_FALSE(hasOneScale(settings, 2)); // automatic: by the box
    EXPECT_TRUE(hasOneScale(settings, 1));
    settings.scaleFactors = {-1.0, -1.0};
    EXPECT_FALSE(hasOneScale(settings, 2));
    settings.scaleFactors = {1.0, 2.0};
    EXPECT_FALSE(hasOneScale(settings, 2));
    settings.scaleFactors = {3.0, 3.0};
    EXPECT_TRUE(hasOneScale(settings, 2));
}

TEST(ModelSettingsTest, AllPointsAreUsedByDefaultAndWhereAsManyAreNearest)
{
    const ModelSettings nearestFive{-1.0, {}, 0, 1.0, 0.0, 5};

    EXPECT_TRUE(usesAllPoints({}, 100));
    EXPECT_TRUE(usesAllPoints(nearestFive, 4));
    EXPECT_TRUE(usesAllPoints(nearestFive, 5));
    EXPECT_FALSE(usesAllPoints(nearestFive, 6));
}

TEST(ModelSettingsTest, RangesThatTheLibraryTakesForZeroOrInfiniteAreNotScaled)
{
    EXPECT_TRUE(isScalableRange(1.0));
    for (const double range : {0.0, 1e-150, 1e150, infinity, notANumber})
        EXPECT_FALSE(isScalableRange(range)) << range;
}

} // namespace
