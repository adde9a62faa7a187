#include "host/files/ForeignContent.h"

#include <string>
#include <string_view>

#include <gmock/gmock.h>

#include "host/files/CsvReader.h"
#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::describeForeignContent;
using testing::HasSubstr;

using std::string_view_literals::operator""sv;

TEST(ForeignContentTest, TablesOfTextAreNotForeign)
{
    for (const std::string_view text :
         {"x,y,z\n1,2,3\n"sv, "\xEF\xBB\xBFx;y\n"sv, ""sv, " "sv, "{x},y\n"sv, "[x],[y]\n"sv, "<DATE>,<OPEN>\n"sv,
          "ncols nrows\n1 2\n"sv, "ncols"sv, "CDF,x\n"sv, "# x y z\n"sv, "\"II\",x\n"sv, "PK,x\n"sv})
        EXPECT_EQ(describeForeignContent(text), "") << text;
}

TEST(ForeignContentTest, RastersAndVectorFilesAreTold)
{
    EXPECT_EQ(describeForeignContent("II*\0\x08\0\0\0"sv),
              "holds a TIFF image or raster, not a table in CSV; a raster is read by its name, which must end in .tif "
              "then");
    EXPECT_THAT(describeForeignContent("MM\0*\0\0\0\x08"sv), HasSubstr("a TIFF image or raster"));
    EXPECT_THAT(describeForeignContent("SQLite format 3\0\x10"sv), HasSubstr(".gpkg"));
    EXPECT_THAT(describeForeignContent("\0\0\x27\x0a\0\0\0\0"sv), HasSubstr("a Shapefile"));
    EXPECT_THAT(describeForeignContent("\x89HDF\r\n\x1a\n\2\x08"sv), HasSubstr("netCDF"));
    EXPECT_THAT(describeForeignContent("CDF\1\0\0"sv), HasSubstr("netCDF"));
    EXPECT_THAT(describeForeignContent("NCOLS  100\nNROWS 100\n"sv), HasSubstr("an ASCII grid"));
}

TEST(ForeignContentTest, GeoJsonIsToldFromOtherJson)
{
    EXPECT_THAT(describeForeignContent("{ \"type\": \"FeatureCollection\",\n \"features\": ["sv),
                HasSubstr("holds GeoJSON, not a table in CSV; it is read by its name, which must end in .geojson"));
    EXPECT_THAT(describeForeignContent("\xEF\xBB\xBF\n[\n {\"x\": 1}]"sv), HasSubstr("holds JSON, not a table"));
}

TEST(ForeignContentTest, DocumentsAndImagesAreTold)
{
    EXPECT_THAT(describeForeignContent("\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1"sv), HasSubstr("(.xls)"));
    EXPECT_THAT(describeForeignContent("%PDF-1.7\n"sv), HasSubstr("a PDF document"));
    EXPECT_THAT(describeForeignContent("\x89PNG\r\n\x1a\n"sv), HasSubstr("a PNG image"));
    EXPECT_THAT(describeForeignContent("\xff\xd8\xff\xe0"sv), HasSubstr("a JPEG image"));
    EXPECT_THAT(describeForeignContent("\n<!DOCTYPE HTML>\n"sv), HasSubstr("a web page"));
    EXPECT_THAT(describeForeignContent("<?xml version=\"1.0\"?><kml>"sv), HasSubstr("an XML document"));
    EXPECT_THAT(describeForeignContent("PAR1\x15\x04"sv), HasSubstr("a Parquet file"));
    EXPECT_THAT(describeForeignContent("# vtk DataFile Version 3.0\n"sv), HasSubstr("a VTK file"));
    EXPECT_THAT(describeForeignContent("# Settings of a krige model, for --config\n"sv), HasSubstr("behind --config"));
}

TEST(ForeignContentTest, ArchivesAreTold)
{
    EXPECT_THAT(describeForeignContent("7z\xbc\xaf\x27\x1c\0\4"sv), HasSubstr("a 7-Zip archive"));
    EXPECT_THAT(describeForeignContent("Rar!\x1a\x07\1\0"sv), HasSubstr("a RAR archive"));
    EXPECT_THAT(describeForeignContent("a.csv" + std::string(252, '\0') + "ustar\0"), HasSubstr("a tar archive"));
}

TEST(ForeignContentTest, Utf16IsToldWithAndWithoutItsMark)
{
    for (const std::string_view text :
         {"\xff\xfex\0,\0y\0\n\0"sv, "\xfe\xff\0x\0,\0y\0\n"sv, "x\0,\0y\0\n\0"sv, "\0x\0,\0y\0\n"sv})
        EXPECT_EQ(describeForeignContent(text), "is in the encoding UTF-16; save it in UTF-8");
    EXPECT_EQ(describeForeignContent("x\0,y,z,a,b"sv), "");
    EXPECT_EQ(describeForeignContent("\xff\xfex,y\n"sv), "");
}

TEST(ForeignContentTest, ReadersRefuseItWithTheFilesName)
{
    const krige::test::TemporaryFolder folder;
    const std::string path = folder.write("samples.csv", "%PDF-1.7\n");
    const std::string message = krige::test::messageOf<krige::InputError>(
        [&]
        {
            krige::CsvReader reader(path);
            krige::CsvRecord record;
            reader.read(record);
        });

    EXPECT_EQ(message, path + ": holds a PDF document, not a table in CSV");
}
