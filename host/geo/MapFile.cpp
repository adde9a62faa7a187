#include "host/geo/MapFile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <string_view>

#include <unistd.h>

#include "host/geo/loadGeoModule.h"
#include "host/text/HostErrors.h"

namespace krige
{

bool isMapFile(const std::string& path)
{
    static constexpr std::array<std::string_view, 9> suffixes = {".gpkg", ".geojson", ".shp", ".fgb", ".tif",
                                                                 ".tiff", ".vrt",     ".asc", ".nc"};
    std::string suffix = std::filesystem::path(path).extension().string();
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return std::find(suffixes.begin(), suffixes.end(), suffix) != suffixes.end();
}

std::unique_ptr<MapTable> openMapTable(const std::string& path)
{
    if (::access(path.c_str(), R_OK) != 0)
        throw InputError::fromSystem(path, errno);
    return loadGeoModule(path).openTable(path);
}

} // namespace krige
