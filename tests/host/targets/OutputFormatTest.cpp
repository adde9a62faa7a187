#include "host/targets/OutputFormat.h"

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::chooseOutputFormat;
using krige::UsageError;
using krige::test::messageOf;
using testing::HasSubstr;

namespace
{

std::string nameOf(const std::string& path, const std::string& format = "")
{
    return chooseOutputFormat(path, format).name;
}

} // namespace

TEST(OutputFormatTest, TheSuffixTells)
{
    EXPECT_EQ(nameOf("a/map.tif"), "tif");
    EXPECT_EQ(nameOf("map.TIFF"), "tif");
    EXPECT_EQ(nameOf("map.asc"), "asc");
    EXPECT_EQ(nameOf("map.nc"), "nc");
    EXPECT_EQ(nameOf("points.gpkg"), "gpkg");
    EXPECT_EQ(nameOf("points.geojson"), "geojson");
    EXPECT_EQ(nameOf("points.shp"), "shp");
    EXPECT_EQ(nameOf("grid.vtk"), "vtk");
}

TEST(OutputFormatTest, TextHasManyNames)
{
    for (const char* path :
         {"a.csv", "a.tsv", "a.txt", "a.csv.gz", "a.txt.gz", "a.gz", "a", "a.b/c", ".csv", "-", "/dev/null"})
        EXPECT_EQ(nameOf(path), "csv") << path;
}

TEST(OutputFormatTest, AnUnknownSuffixIsRefusedWithTheKnownOnes)
{
    EXPECT_THAT(messageOf<UsageError>([] { nameOf("map.png"); }),
                HasSubstr("--output: nothing is known of files that end in '.png'; known are .csv, .tsv and .txt"));
    EXPECT_THAT(messageOf<UsageError>([] { nameOf("map.png.gz"); }), HasSubstr("'.png'"));
}

TEST(OutputFormatTest, AFormatByNameWins)
{
    EXPECT_EQ(nameOf("map.png", "tif"), "tif");
    EXPECT_EQ(nameOf("map.tif", "csv"), "csv");
    EXPECT_EQ(messageOf<UsageError>([] { nameOf("map.tif", "bmp"); }),
              "--output-format: must be one of csv, vtk, tif, asc, nc, gpkg, geojson and shp, not 'bmp'");
}

TEST(OutputFormatTest, OnlyTextIsPackedOrStreamed)
{
    EXPECT_EQ(messageOf<UsageError>([] { nameOf("map.tif.gz"); }),
              "--output: a .tif file is not packed; leave .gz out of its name");
    EXPECT_EQ(messageOf<UsageError>([] { nameOf("map.vtk.gz"); }),
              "--output: a .vtk file is not packed; leave .gz out of its name");
    EXPECT_THAT(messageOf<UsageError>([] { nameOf("-", "tif"); }),
                HasSubstr("a .tif file is not written in order; name a plain file"));
}
