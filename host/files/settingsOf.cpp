#include "host/files/settingsOf.h"

#include "host/geo/MapFile.h"

namespace krige
{

ReadSettings settingsOf(const std::string& path, const ReadSettings& reading)
{
    ReadSettings settings = reading;
    if (isMapFile(path))
    {
        static_cast<CsvFormat&>(settings) = CsvFormat();
        settings.delimiter = ',';
        settings.hasHeader = true;
    }
    return settings;
}

} // namespace krige
