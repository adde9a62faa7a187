#include "host/files/PendingFile.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <unistd.h>

#include "host/text/HostErrors.h"

namespace krige
{

namespace
{

constexpr int numSlots = 24;

/// The temporary files that a signal must remove. The handler reads pointers only: nothing here allocates or locks.
std::atomic<const char*> temporaryFiles[numSlots];
static_assert(std::atomic<const char*>::is_always_lock_free);

extern "C" void removeTemporaryFilesAndDie(int signalNumber)
{
    for (const std::atomic<const char*>& name : temporaryFiles)
    {
        if (const char* const path = name.load())
            ::unlink(path);
    }
    std::raise(signalNumber); // the default action is back: the shell sees a death by this signal
}

void installSignalHandlers()
{
    static bool installed = false;
    if (installed)
        return;
    installed = true;
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ})
    {
        struct sigaction current = {};
        if (sigaction(signalNumber, nullptr, &current) != 0 || current.sa_handler != SIG_DFL)
            continue; // ignored under nohup, or somebody else's
        struct sigaction action = {};
        action.sa_handler = removeTemporaryFilesAndDie;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signalNumber, &action, nullptr);
    }
}

int takeSlot(const char* path)
{
    for (int slot = 0; slot < numSlots; ++slot)
    {
        const char* empty = nullptr;
        if (temporaryFiles[slot].compare_exchange_strong(empty, path))
            return slot;
    }
    throw std::length_error("Too many output files at once");
}

/// Beside the target, for a rename does not cross file systems. Short: the target's own name may be as long as names
/// can be.
std::string makeTemporaryName(const std::filesystem::path& target, std::uint64_t attempt, const std::string& ending)
{
    const auto ticks = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    const std::string name = ".krige-" + std::to_string(::getpid()) + "-" + std::to_string(ticks) + "-" +
                             std::to_string(attempt) + ".tmp" + ending;
    return (target.parent_path() / name).string();
}

std::string withOtherEnding(const std::string& path, const std::string& oldEnding, const std::string& ending)
{
    return path.substr(0, path.size() - oldEnding.size()) + ending;
}

} // namespace

PendingFile::PendingFile(const std::string& path_, const std::string& ending) : path(path_), finalPath(path_)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::is_directory(status))
        throw InputError(path + ": cannot be written: it is a folder");
    if (std::filesystem::exists(status))
    {
        if (::access(path.c_str(), W_OK) != 0) // a rename would get round the write protection
            throw InputError(path + ": cannot be written: " + std::generic_category().message(errno));
        const std::filesystem::path resolved = std::filesystem::canonical(path, error);
        if (!error)
            finalPath = resolved.string();
    }
    for (std::uint64_t attempt = 0; temporaryPath.empty(); ++attempt)
    {
        temporaryPath = makeTemporaryName(finalPath, attempt, ending);
        if (std::filesystem::exists(std::filesystem::symlink_status(temporaryPath, error)))
            temporaryPath.clear();
    }
    reserve();
}

PendingFile::PendingFile(const PendingFile& first, const std::string& oldEnding, const std::string& ending)
    : path(withOtherEnding(first.path, oldEnding, ending)),
      finalPath(withOtherEnding(first.finalPath, oldEnding, ending)),
      temporaryPath(withOtherEnding(first.temporaryPath, oldEnding, ending))
{
    reserve();
}

PendingFile::~PendingFile()
{
    if (slot < 0)
        return;
    ::unlink(temporaryPath.c_str());
    release();
}

void PendingFile::reserve()
{
    installSignalHandlers();
    slot = takeSlot(temporaryPath.c_str()); // before the file exists: a signal in between must find it
}

void PendingFile::release()
{
    temporaryFiles[slot].store(nullptr);
    slot = -1;
}

bool PendingFile::replaces() const
{
    std::error_code error;
    return std::filesystem::exists(finalPath, error);
}

void PendingFile::keepPermissions() const
{
    std::error_code error;
    const std::filesystem::file_status replaced = std::filesystem::status(finalPath, error);
    if (std::filesystem::exists(replaced))
        std::filesystem::permissions(temporaryPath, replaced.permissions(), error);
}

void PendingFile::commit()
{
    keepPermissions();
    if (std::rename(temporaryPath.c_str(), finalPath.c_str()) != 0)
        throw InputError(path + ": cannot be replaced: " + std::generic_category().message(errno));
    release();
}

} // namespace krige
