#include "host/files/ForeignContent.h"

#include <algorithm>
#include <cctype>

namespace krige
{

namespace
{

using namespace std::string_view_literals;

struct Format
{
    std::string_view mark;
    const char* content;
    const char* advice; // what follows "not a table in CSV"
};

constexpr const char* nameEndsInTif = "; a raster is read by its name, which must end in .tif then";
constexpr const char* saveSheet = "; save its sheet as CSV";
constexpr const char* convert = "; convert it to CSV";

/// By their first bytes, which no text has, or hardly any.
constexpr Format binaryFormats[] = {
    {"II*\0"sv, "a TIFF image or raster", nameEndsInTif},
    {"MM\0*"sv, "a TIFF image or raster", nameEndsInTif},
    {"II+\0"sv, "a TIFF image or raster", nameEndsInTif},
    {"MM\0+"sv, "a TIFF image or raster", nameEndsInTif},
    {"SQLite format 3\0"sv, "a database, such as a GeoPackage",
     "; a GeoPackage is read by its name, which must end in .gpkg then"},
    {"\0\0\x27\x0a"sv, "a Shapefile", "; it is read by its name, which must end in .shp then"},
    {"\x89HDF\r\n\x1a\n"sv, "an HDF5 or netCDF file", "; netCDF is read by its name, which must end in .nc then"},
    {"CDF\1"sv, "a netCDF file", "; it is read by its name, which must end in .nc then"},
    {"CDF\2"sv, "a netCDF file", "; it is read by its name, which must end in .nc then"},
    {"CDF\5"sv, "a netCDF file", "; it is read by its name, which must end in .nc then"},
    {"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1"sv, "an old office document, such as a spreadsheet (.xls)", saveSheet},
    {"PAR1"sv, "a Parquet file", convert},
    {"\x93NUMPY"sv, "a NumPy array", convert},
    {"RDX3\n"sv, "an R data file", convert},
    {"%PDF-"sv, "a PDF document", ""},
    {"\x89PNG\r\n\x1a\n"sv, "a PNG image", ""},
    {"\xff\xd8\xff"sv, "a JPEG image", ""},
    {"GIF8"sv, "a GIF image", ""},
    {"7z\xbc\xaf\x27\x1c"sv, "a 7-Zip archive", "; unpack it and name one of its files"},
    {"Rar!\x1a\x07"sv, "a RAR archive", "; unpack it and name one of its files"},
};

/// By how their text begins, whatever its case.
constexpr Format textFormats[] = {
    {"<!doctype html"sv, "a web page", "; a download may have brought an error page in place of the file"},
    {"<html"sv, "a web page", "; a download may have brought an error page in place of the file"},
    {"<?xml"sv, "an XML document, such as KML or GML", convert},
    {"<kml"sv, "a KML document", convert},
    {"<gpx"sv, "a GPX document", convert},
    {"# vtk datafile"sv, "a VTK file", ""},
    {"# settings of a krige model"sv, "the settings of a model", "; they belong behind --config"},
};

bool beginsWith(std::string_view text, std::string_view mark)
{
    return text.substr(0, mark.size()) == mark;
}

std::string_view withoutLeadingBlanks(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    return text;
}

/// UTF-16 with a byte-order mark, or so much of ASCII in it that every other byte is NUL.
bool isUtf16(std::string_view head)
{
    constexpr std::size_t looked = 16;
    const std::string_view begin = head.substr(0, looked);
    const bool isMarked = beginsWith(begin, "\xff\xfe"sv) || beginsWith(begin, "\xfe\xff"sv);
    if (isMarked && begin.find('\0') != std::string_view::npos)
        return true;
    for (const std::size_t first : {std::size_t{0}, std::size_t{1}})
    {
        bool alternates = begin.size() >= 8;
        for (std::size_t i = 0; i < begin.size(); ++i)
            alternates = alternates && (begin[i] == '\0') == (i % 2 == first);
        if (alternates)
            return true;
    }
    return false;
}

/// An object with a member, or a list of objects.
bool isJson(std::string_view text)
{
    if (text.empty() || (text[0] != '{' && text[0] != '['))
        return false;
    const std::string_view inner = withoutLeadingBlanks(text.substr(1));
    return !inner.empty() && inner[0] == (text[0] == '{' ? '"' : '{');
}

bool isGeoJson(std::string_view text)
{
    return text.find("\"FeatureCollection\"") != std::string_view::npos ||
           text.find("\"Feature\"") != std::string_view::npos || text.find("\"geometry\"") != std::string_view::npos;
}

/// "ncols 100": where a name stands for the number, it is the header row of a table.
bool isAsciiGrid(std::string_view lowerText)
{
    constexpr std::string_view mark = "ncols";
    if (!beginsWith(lowerText, mark))
        return false;
    const std::string_view count = withoutLeadingBlanks(lowerText.substr(mark.size()));
    return count.size() < lowerText.size() - mark.size() && !count.empty() &&
           std::isdigit(static_cast<unsigned char>(count[0])) != 0;
}

std::string describe(const char* content, const char* advice)
{
    return std::string("holds ") + content + ", not a table in CSV" + advice;
}

} // namespace

std::string describeForeignContent(std::string_view head)
{
    for (const Format& format : binaryFormats)
    {
        if (beginsWith(head, format.mark))
            return describe(format.content, format.advice);
    }
    constexpr std::size_t placeOfTarMark = 257;
    if (head.size() > placeOfTarMark && beginsWith(head.substr(placeOfTarMark), "ustar"sv))
        return describe("a tar archive", "; unpack it and name one of its files");
    if (isUtf16(head))
        return "is in the encoding UTF-16; save it in UTF-8";

    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    const std::string_view text =
        withoutLeadingBlanks(head.substr(beginsWith(head, byteOrderMark) ? byteOrderMark.size() : 0));
    if (isJson(text))
        return isGeoJson(text) ? describe("GeoJSON", "; it is read by its name, which must end in .geojson then")
                               : describe("JSON", convert);
    constexpr std::size_t longestMark = 32;
    std::string begin(text.substr(0, longestMark));
    std::transform(begin.begin(), begin.end(), begin.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (isAsciiGrid(begin))
        return describe("an ASCII grid", "; a raster is read by its name, which must end in .asc then");
    for (const Format& format : textFormats)
    {
        if (beginsWith(begin, format.mark))
            return describe(format.content, format.advice);
    }
    return {};
}

} // namespace krige
