#include "host/model/InputPlaces.h"

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::InputPlaces;
using krige::suggestProjection;
using krige::test::messageOf;
using testing::HasSubstr;

TEST(InputPlacesTest, TextNamesNoReferenceSystem)
{
    const InputPlaces places("samples.csv", {"x", "y"}, {});
    std::vector<std::vector<double>> inputs{{1.0}, {2.0}};

    EXPECT_EQ(places.getCrs(), "");
    EXPECT_EQ(places.project(inputs), 0u);
    EXPECT_EQ(inputs, (std::vector<std::vector<double>>{{1.0}, {2.0}}));
}

TEST(InputPlacesTest, LongitudesAndLatitudesGoByNamesAndValues)
{
    const InputPlaces named("samples.csv", {"lat", "lon"}, {});
    EXPECT_TRUE(named.areDegrees({{-90.0, 52.0}, {5.0, 359.0}}));
    EXPECT_FALSE(named.areDegrees({{463000.0, 464000.0}, {155000.0, 156000.0}}));
    EXPECT_FALSE(InputPlaces("samples.csv", {"x", "y"}, {}).areDegrees({{5.0}, {52.0}}));
    EXPECT_FALSE(InputPlaces("samples.csv", {"lon"}, {}).areDegrees({{5.0}}));
}

TEST(InputPlacesTest, TheWayOutIsTheZoneOfTheMiddle)
{
    const std::vector<std::string> names{"lon", "lat"};
    EXPECT_THAT(suggestProjection(names, {{4.0, 8.0}, {50.0, 54.0}}), HasSubstr("--project EPSG:32632 "));
    EXPECT_THAT(suggestProjection(names, {{-70.0, -69.0}, {-33.0, -34.0}}), HasSubstr("--project EPSG:32719 "));
    EXPECT_THAT(suggestProjection(names, {{180.0, 180.0}, {-17.0, -17.0}}), HasSubstr("--project EPSG:32701 "));
    EXPECT_THAT(suggestProjection(names, {{359.0, 359.0}, {1.0, 1.0}}), HasSubstr("--project EPSG:32630 "));
    EXPECT_THAT(suggestProjection({"lat", "lon"}, {{50.0}, {4.0}}), HasSubstr("UTM zone 31 north"));
}
