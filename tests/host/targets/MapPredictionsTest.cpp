#include "host/targets/MapPredictions.h"

#include <gmock/gmock.h>

using krige::mosaicOfParts;
using krige::mosaicPath;
using testing::HasSubstr;
using testing::Not;

TEST(MapPredictionsTest, TheMosaicHasTheNameOfThePartsWithoutTheirNumber)
{
    EXPECT_EQ(mosaicPath("a/map{shard}.tif"), "a/map.vrt");
    EXPECT_EQ(mosaicPath("map-{shard}.tiff"), "map.vrt");
    EXPECT_EQ(mosaicPath("map_{shard}_of.tif"), "map_of.vrt");
}

TEST(MapPredictionsTest, AMosaicPutsEachPartBelowTheOneBefore)
{
    const std::string text =
        mosaicOfParts({100, 7, 10.0, 80.0, 2.0, 0.5}, {"map1.tif", "map2.tif"}, {{"z", ""}}, false, "");

    EXPECT_THAT(text, HasSubstr("<VRTDataset rasterXSize=\"100\" rasterYSize=\"7\">"));
    EXPECT_THAT(text, HasSubstr("<GeoTransform>10, 2, 0, 80, 0, -0.5</GeoTransform>"));
    EXPECT_THAT(text, HasSubstr("<SourceFilename relativeToVRT=\"1\">map2.tif</SourceFilename>"));
    EXPECT_THAT(text, HasSubstr("<DstRect xOff=\"0\" yOff=\"0\" xSize=\"100\" ySize=\"4\"/>"));
    EXPECT_THAT(text, HasSubstr("<DstRect xOff=\"0\" yOff=\"4\" xSize=\"100\" ySize=\"3\"/>"));
    EXPECT_THAT(text, Not(HasSubstr("<SRS>")));
}

TEST(MapPredictionsTest, NamesInAMosaicAreEscaped)
{
    const std::string text = mosaicOfParts({1, 1, 0.0, 0.0, 1.0, 1.0}, {"a&b.tif"}, {{"<z>", ""}}, true, "W[\"x\"]");

    EXPECT_THAT(text, HasSubstr("<SRS>W[&quot;x&quot;]</SRS>"));
    EXPECT_THAT(text, HasSubstr("<Description>&lt;z&gt;</Description>"));
    EXPECT_THAT(text, HasSubstr(">a&amp;b.tif<"));
    EXPECT_THAT(text, HasSubstr("dataType=\"Float32\""));
}
