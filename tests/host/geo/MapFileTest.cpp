#include "host/geo/MapFile.h"

#include <gmock/gmock.h>

#include "host/geo/MapAxes.h"
#include "host/geo/loadGeoModule.h"
#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::findMapAxes;
using krige::InputError;
using krige::isMapFile;
using krige::loadGeoModuleFrom;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::HasSubstr;

TEST(MapFileTest, TheSuffixTells)
{
    for (const char* path : {"a.gpkg", "a.geojson", "a.shp", "a.fgb", "a.tif", "a.TIFF", "a.vrt", "a.asc", "b/a.nc"})
        EXPECT_TRUE(isMapFile(path)) << path;
    for (const char* path : {"a.csv", "a.gpkg.csv", "a", "tif", "-", "a.csv.gz", "a.tif/b"})
        EXPECT_FALSE(isMapFile(path)) << path;
}

TEST(MapFileTest, AFileThatIsNotThereIsNamedAsSuch)
{
    EXPECT_EQ(messageOf<InputError>([] { krige::openMapTable("no/such.gpkg"); }),
              "no/such.gpkg: No such file or directory");
}

TEST(MapAxesTest, NamesTellWhichInputRunsEast)
{
    EXPECT_EQ(findMapAxes({"lat", "lon"}).x, 1u);
    EXPECT_EQ(findMapAxes({"lat", "lon"}).y, 0u);
    EXPECT_EQ(findMapAxes({"depth", "Easting", "Northing"}).x, 1u);
    EXPECT_EQ(findMapAxes({"depth", "Easting", "Northing"}).y, 2u);
}

TEST(MapAxesTest, OtherNamesCountInTheirOrder)
{
    EXPECT_EQ(findMapAxes({"a", "b", "x"}).x, 0u);
    EXPECT_EQ(findMapAxes({"a", "b", "x"}).y, 1u);
}

TEST(MapAxesTest, DegreesAreThoseOfALongitudeAndALatitude)
{
    EXPECT_TRUE(areNamedAsDegrees({"lat", "lon"}, findMapAxes({"lat", "lon"})));
    EXPECT_FALSE(areNamedAsDegrees({"x", "y"}, findMapAxes({"x", "y"})));
    EXPECT_FALSE(areNamedAsDegrees({"lon", "depth"}, findMapAxes({"lon", "depth"})));
}

TEST(LoadGeoModuleTest, AMissingModuleNamesThePackage)
{
    EXPECT_EQ(messageOf<InputError>(
                  [] {
                      loadGeoModuleFrom({"no/such.so", "nor/this.so"}, "map.tif");
                  }),
              "map.tif: needs the module krige_gdal, which is not installed; it comes with the package krige-gdal");
}

TEST(LoadGeoModuleTest, AFileThatIsNoLibraryIsNamed)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("krige_gdal.so", "no library");

    EXPECT_THAT(messageOf<InputError>([&] { loadGeoModuleFrom({path}, "map.tif"); }),
                HasSubstr("map.tif: the module krige_gdal cannot be loaded: "));
}

TEST(LoadGeoModuleTest, ALibraryThatIsNotTheModuleIsNotUsed)
{
    EXPECT_THAT(messageOf<InputError>([] { loadGeoModuleFrom({FENN_TEST_OTHER_LIBRARY}, "map.tif"); }),
                HasSubstr("belongs to another version of krige than this one"));
}
