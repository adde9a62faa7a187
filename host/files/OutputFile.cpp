#include "host/files/OutputFile.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <new>
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

bool hasSuffix(const std::string& text, const std::string& suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
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

OutputFile::OutputFile(const std::string& path_) : path(isStandardStream(path_) ? "standard output" : path_)
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
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
        !std::filesystem::is_directory(status))
    {
        errno = 0;
        file = std::fopen(path.c_str(), "wb");
        checkIsOpen();
        return;
    }
    pending = std::make_unique<PendingFile>(path);
    errno = 0;
    file = std::fopen(pending->getTemporaryPath().c_str(), "wbx");
    checkIsOpen();
    pending->keepPermissions();
}

OutputFile::~OutputFile()
{
    if (file)
        std::fclose(file);
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
    if (pending)
        pending->commit();
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
