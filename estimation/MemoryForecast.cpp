#include "estimation/MemoryForecast.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>
#include <string>

#include <sys/resource.h>

#include "estimation/MergedSamples.h"
#include "estimation/SystemSize.h"

namespace fenn::estimation
{

namespace
{

constexpr double unlimited = std::numeric_limits<double>::infinity();

/// The number after this key in a file of lines such as "MemAvailable:  123 kB"; NaN where there is none.
double readEntry(const char* path, const std::string& key)
{
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
    {
        std::istringstream words(line);
        std::string word;
        double value = 0.0;
        if (words >> word >> value && word == key)
            return value;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

/// The number that is a file's content; NaN for "max" and for a file that cannot be read.
double readNumber(const std::string& path)
{
    std::ifstream file(path);
    double value = 0.0;
    return file >> value ? value : std::numeric_limits<double>::quiet_NaN();
}

double bytesLeft(double limit, double used)
{
    if (std::isnan(limit) || std::isnan(used))
        return unlimited;
    return std::max(0.0, limit - used);
}

/// The group that this process is in: the path after the last colon of the line with these controllers.
std::string findControlGroup(const std::string& controllers)
{
    std::ifstream file("/proc/self/cgroup");
    for (std::string line; std::getline(file, line);)
    {
        const std::size_t first = line.find(':');
        const std::size_t second = first == std::string::npos ? first : line.find(':', first + 1);
        if (second != std::string::npos && line.substr(first + 1, second - first - 1) == controllers)
            return line.substr(second + 1);
    }
    return {};
}

/// What the tightest of a group and those around it leaves. A container sees its own group as the root.
double bytesLeftInGroup(const std::string& root, std::string group, const char* limitName, const char* usedName)
{
    double left = unlimited;
    for (;;)
    {
        const std::string folder = root + group + "/";
        left = std::min(left, bytesLeft(readNumber(folder + limitName), readNumber(folder + usedName)));
        if (group.empty() || group == "/")
            return left;
        group.resize(group.rfind('/'));
    }
}

double bytesLeftInControlGroups()
{
    return std::min(bytesLeftInGroup("/sys/fs/cgroup", findControlGroup(""), "memory.max", "memory.current"),
                    bytesLeftInGroup("/sys/fs/cgroup/memory", findControlGroup("memory"), "memory.limit_in_bytes",
                                     "memory.usage_in_bytes"));
}

double bytesLeftOfAddressSpace()
{
    rlimit limit = {};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return unlimited;
    constexpr double kibibyte = 1024.0;
    return bytesLeft(static_cast<double>(limit.rlim_cur), readEntry("/proc/self/status", "VmSize:") * kibibyte);
}

} // namespace

double findAvailableBytes()
{
    constexpr double kibibyte = 1024.0;
    const double ofMachine = bytesLeft(readEntry("/proc/meminfo", "MemAvailable:") * kibibyte, 0.0);
    return std::min({ofMachine, bytesLeftInControlGroups(), bytesLeftOfAddressSpace()});
}

MemoryForecast forecastMemory(const std::vector<std::vector<double>>& inputs, const ModelSettings& settings,
                              bool isExact)
{
    MemoryForecast forecast;
    forecast.numPoints = inputs.front().size();
    if (settings.duplicateTolerance >= 0.0)
        forecast.numPoints = findMergedSamples(inputs, settings.duplicateTolerance).numPoints;
    forecast.isGlobal = usesAllPoints(settings, forecast.numPoints);
    const std::size_t numInSystem =
        forecast.isGlobal ? forecast.numPoints : static_cast<std::size_t>(settings.numNearestPoints);
    forecast.bytes = forecast.isGlobal && !isExact
                         ? calcCovarianceBytes(numInSystem, inputs.size(), settings.driftOrder)
                         : calcSystemBytes(numInSystem, inputs.size(), settings.driftOrder);
    return forecast;
}

std::string formatBytes(double bytes)
{
    const char* const units[] = {"bytes", "kB", "MB", "GB", "TB", "PB", "EB"};
    std::size_t unit = 0;
    while (bytes >= 999.5 && unit + 1 < std::size(units)) // rounded it would have four figures
    {
        bytes /= 1000.0;
        ++unit;
    }
    char text[32];
    static_cast<void>(std::snprintf(text, sizeof text, "%.3g ", bytes));
    return std::string(text) + units[unit];
}

} // namespace fenn::estimation
