#include "host/files/OutputPlace.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <unistd.h>

#include "host/text/HostErrors.h"

namespace krige
{

namespace
{

/// The process in a temporary file's name, ".krige-PID-..."; 0 for other names.
pid_t processOf(std::string_view name)
{
    constexpr std::string_view mark = ".krige-";
    if (name.substr(0, mark.size()) != mark || name.find(".tmp") == std::string_view::npos)
        return 0;
    name.remove_prefix(mark.size());
    pid_t process = 0;
    const std::from_chars_result result = std::from_chars(name.data(), name.data() + name.size(), process);
    const bool isNumber = result.ec == std::errc() && result.ptr != name.data() + name.size() && *result.ptr == '-';
    return isNumber && process > 0 ? process : 0;
}

} // namespace

void checkCanBeWritten(const std::string& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::is_directory(status))
        throw InputError(path + ": cannot be written: it is a folder");
    std::filesystem::path folder = std::filesystem::path(path).parent_path();
    if (folder.empty())
        folder = ".";
    // A file that stands there already is replaced, by one that is made beside it.
    const bool isDevice = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
    const bool isClosed = (!isDevice && ::access((folder / ".").c_str(), W_OK | X_OK) != 0) ||
                          (std::filesystem::exists(status) && ::access(path.c_str(), W_OK) != 0);
    if (isClosed)
        throw InputError(path + ": cannot be written: " + std::generic_category().message(errno));
}

std::vector<std::string> findLeftovers(const std::string& outputPath)
{
    std::error_code error;
    std::filesystem::path folder = std::filesystem::path(outputPath).parent_path();
    if (folder.empty())
        folder = ".";
    std::vector<std::string> leftovers;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    {
        const pid_t process = processOf(entry->path().filename().string());
        if (process > 0 && ::kill(process, 0) != 0 && errno == ESRCH)
            leftovers.push_back(entry->path().string());
    }
    std::sort(leftovers.begin(), leftovers.end());
    return leftovers;
}

} // namespace krige
