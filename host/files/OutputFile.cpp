#include "host/files/OutputFile.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <unistd.h>
#include <zlib.h>

#include "host/files/InputFile.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

constexpr int numSlots = 8;

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

bool hasSuffix(const std::string& text, const std::string& suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

/// Beside the target, for a rename does not cross file systems. Short: the target's own name may be as long as names
/// can be.
std::string makeTemporaryName(const std::filesystem::path& target, std::uint64_t attempt)
{
    const auto ticks = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    const std::string name =
        ".krige-" + std::to_string(::getpid()) + "-" + std::to_string(ticks) + "-" + std::to_string(attempt) + ".tmp";
    return (target.parent_path() / name).string();
}

} // namespace

struct OutputFile::Deflater
{
    Deflater() : packed(std::size_t{1} << 16)
    {
        constexpr int gzipWindow = 15 + 16; // the largest window within a gzip wrapper, without name or time
        constexpr int memoryLevel = 8;
        if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, gzipWindow, memoryLevel, Z_DEFAULT_STRATEGY) !=
            Z_OK)
            throw std::bad_alloc();
    }

    Deflater(const Deflater& other) = delete;
    Deflater& operator=(const Deflater& other) = delete;

    ~Deflater()
    {
        deflateEnd(&stream);
    }

    z_stream stream{};
    std::vector<char> packed;
};

OutputFile::OutputFile(const std::string& path_)
    : path(isStandardStream(path_) ? "standard output" : path_), finalPath(path_)
{
    if (isStandardStream(path_))
    {
        openStandardOutput();
        return;
    }
    if (hasSuffix(path, ".gz"))
        deflater = std::make_unique<Deflater>();
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (std::filesystem::is_directory(status))
        throw InputError(path + ": cannot be written: it is a folder");
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
    {
        errno = 0;
        file = std::fopen(path.c_str(), "wb");
        checkIsOpen();
        return;
    }
    if (std::filesystem::exists(status))
    {
        if (::access(path.c_str(), W_OK) != 0) // a rename would get round the write protection
            throw InputError(path + ": cannot be written: " + std::generic_category().message(errno));
        const std::filesystem::path resolved = std::filesystem::canonical(path, error);
        if (!error)
            finalPath = resolved.string();
    }
    openTemporary();
    if (std::filesystem::exists(status)) // a replaced file keeps who may read it
        std::filesystem::permissions(temporaryPath, status.permissions(), error);
}

OutputFile::~OutputFile()
{
    closeAndRemove();
}

/// Not by its device's name: opening that anew would cut off what a shell appends to.
void OutputFile::openStandardOutput()
{
    errno = 0;
    const int descriptor = ::dup(STDOUT_FILENO);
    file = descriptor < 0 ? nullptr : ::fdopen(descriptor, "wb");
    if (!file && descriptor >= 0)
        ::close(descriptor);
    checkIsOpen();
}

void OutputFile::checkIsOpen() const
{
    if (!file)
        throw InputError(path + ": cannot be written: " + std::generic_category().message(errno));
}

void OutputFile::openTemporary()
{
    installSignalHandlers();
    for (std::uint64_t attempt = 0;; ++attempt)
    {
        temporaryPath = makeTemporaryName(finalPath, attempt);
        slot = takeSlot(temporaryPath.c_str()); // before it exists: a signal in between must find it
        errno = 0;
        file = std::fopen(temporaryPath.c_str(), "wbx");
        if (file)
            return;
        const int errorNumber = errno;
        temporaryFiles[slot].store(nullptr);
        slot = -1;
        if (errorNumber != EEXIST || attempt == 100)
            throw InputError(path + ": cannot be written: " + std::generic_category().message(errorNumber));
    }
}

void OutputFile::write(const std::string& text)
{
    if (deflater)
        deflateText(text.data(), text.size(), false);
    else
        writeRaw(text.data(), text.size());
}

void OutputFile::writeAt(std::uint64_t offset, const std::string& bytes)
{
    errno = 0;
    if (deflater || fseeko(file, static_cast<off_t>(offset), SEEK_SET) != 0)
        throw InputError(path + ": cannot be written out of order; name a plain file");
    writeRaw(bytes.data(), bytes.size());
}

void OutputFile::writeRaw(const char* bytes, std::size_t count)
{
    errno = 0;
    if (std::fwrite(bytes, 1, count, file) != count)
        throwWriteError();
}

void OutputFile::throwWriteError() const
{
    if (errno == EPIPE)
        throw ClosedPipe();
    throw InputError(path + ": writing failed: " + std::generic_category().message(errno));
}

void OutputFile::deflateText(const char* text, std::size_t count, bool last)
{
    z_stream& stream = deflater->stream;
    do // in portions, for zlib counts with an int
    {
        const std::size_t portion = std::min<std::size_t>(count, std::size_t{1} << 30);
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text)); // only read
        stream.avail_in = static_cast<uInt>(portion);
        text += portion;
        count -= portion;
        do
        {
            stream.next_out = reinterpret_cast<Bytef*>(deflater->packed.data());
            stream.avail_out = static_cast<uInt>(deflater->packed.size());
            deflate(&stream, last && count == 0 ? Z_FINISH : Z_NO_FLUSH); // cannot fail on a sound state
            writeRaw(deflater->packed.data(), deflater->packed.size() - stream.avail_out);
        } while (stream.avail_out == 0);
    } while (count > 0);
}

void OutputFile::commit()
{
    if (deflater)
        deflateText(nullptr, 0, true);
    errno = 0;
    const bool closed = std::fclose(file) == 0;
    file = nullptr;
    if (!closed)
        throwWriteError();
    if (temporaryPath.empty())
        return;
    if (std::rename(temporaryPath.c_str(), finalPath.c_str()) != 0)
        throw InputError(path + ": cannot be replaced: " + std::generic_category().message(errno));
    temporaryFiles[slot].store(nullptr);
    slot = -1;
}

void OutputFile::closeAndRemove()
{
    if (file)
        std::fclose(file);
    file = nullptr;
    if (slot < 0)
        return;
    ::unlink(temporaryPath.c_str());
    temporaryFiles[slot].store(nullptr);
    slot = -1;
}

void checkIsNotInput(const char* option, const std::string& outputPath, const std::string& inputPath)
{
    if (isStandardStream(outputPath))
        return;
    std::error_code error;
    if (outputPath == inputPath || std::filesystem::equivalent(outputPath, inputPath, error))
        throw UsageError(std::string(option) + ": " + quoteForMessage(outputPath) +
                         " is the file that is read; name another one");
}

} // namespace krige
