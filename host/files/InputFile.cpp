#include "host/files/InputFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <new>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include "host/files/ArchiveUnpacker.h"
#include "host/geo/MapFile.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/Spelling.h"

namespace krige
{

namespace
{

constexpr std::size_t packedCapacity = std::size_t{1} << 16;
constexpr int gzipWindow = 15 + 16; // zlib's way to ask for the largest window within a gzip wrapper

bool isGzip(std::string_view head)
{
    return head.substr(0, 2) == "\x1F\x8B";
}

std::vector<std::string> namesIn(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        names.push_back(entry->path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

/// With a file of a like name in the same folder, where there is one.
[[noreturn]] void throwCannotOpen(const std::string& path, int errorNumber)
{
    const std::string message =
        InputError::fromSystem(isStandardStream(path) ? "standard input" : path, errorNumber).what();
    if (errorNumber != ENOENT)
        throw InputError(message);
    const std::filesystem::path wanted(path);
    const std::filesystem::path folder = wanted.parent_path();
    const std::string meant = findMeant(wanted.filename().string(), namesIn(folder.empty() ? "." : folder));
    throw InputError(message +
                     (meant.empty() ? "" : "; did you mean " + quoteForMessage((folder / meant).string()) + "?"));
}

std::string exampleOfFileIn(const std::string& folder)
{
    for (const std::string& name : namesIn(folder))
    {
        const std::filesystem::path path = std::filesystem::path(folder) / name;
        std::error_code error;
        if (name[0] != '.' && std::filesystem::is_regular_file(path, error))
            return ", for instance " + quoteForMessage(path.string());
    }
    return {};
}

} // namespace

struct InputFile::Inflater
{
    Inflater() : packed(packedCapacity)
    {
        if (inflateInit2(&stream, gzipWindow) != Z_OK)
            throw std::bad_alloc();
    }

    Inflater(const Inflater& other) = delete;
    Inflater& operator=(const Inflater& other) = delete;

    ~Inflater()
    {
        inflateEnd(&stream);
    }

    z_stream stream{};
    std::vector<char> packed;
    bool betweenMembers = false; // a gzip file may hold several, one after the other
};

InputFile::InputFile(const std::string& path) : name(isStandardStream(path) ? "standard input" : path)
{
    if (isMapFile(path))
    {
        table = openMapTable(path);
        return;
    }
    errno = 0;
    descriptor = isStandardStream(path) ? ::dup(STDIN_FILENO) : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        throwCannotOpen(path, errno);
    try
    {
        struct stat status = {};
        if (::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode))
            throw InputError(name + ": Is a directory; name a file in it" + exampleOfFileIn(path));
        detectPacking();
    }
    catch (...)
    {
        ::close(descriptor);
        throw;
    }
}

InputFile::~InputFile()
{
    if (descriptor >= 0)
        ::close(descriptor);
}

void InputFile::detectPacking()
{
    head.resize(ArchiveUnpacker::markLength);
    head.resize(readRaw(head.data(), head.size()));
    // By zlib: libarchive takes 4 % longer for the same data.
    if (isGzip(head))
        inflater = std::make_unique<Inflater>();
    else if (ArchiveUnpacker::isPacked(head))
        unpacker = std::make_unique<ArchiveUnpacker>(descriptor, head, name);
}

std::size_t InputFile::read(char* bytes, std::size_t capacity)
{
    if (table)
        return table->read(bytes, capacity);
    if (inflater)
        return readPacked(bytes, capacity);
    if (unpacker)
        return unpacker->read(bytes, capacity);
    const std::size_t fromHead = std::min(capacity, head.size() - headUsed);
    std::memcpy(bytes, head.data() + headUsed, fromHead);
    headUsed += fromHead;
    return fromHead + readRaw(bytes + fromHead, capacity - fromHead);
}

std::size_t InputFile::readRaw(char* bytes, std::size_t capacity)
{
    std::size_t size = 0;
    while (size < capacity)
    {
        const ssize_t count = ::read(descriptor, bytes + size, capacity - size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw InputError::fromSystem(name, errno);
        if (count == 0)
            break;
        size += static_cast<std::size_t>(count);
    }
    return size;
}

std::size_t InputFile::readPacked(char* bytes, std::size_t capacity)
{
    z_stream& stream = inflater->stream;
    capacity = std::min<std::size_t>(capacity, std::numeric_limits<uInt>::max());
    stream.next_out = reinterpret_cast<Bytef*>(bytes);
    stream.avail_out = static_cast<uInt>(capacity);
    while (stream.avail_out > 0)
    {
        if (stream.avail_in == 0)
        {
            const std::size_t fromHead = head.size() - headUsed;
            std::memcpy(inflater->packed.data(), head.data() + headUsed, fromHead);
            headUsed += fromHead;
            const std::size_t size =
                fromHead + readRaw(inflater->packed.data() + fromHead, inflater->packed.size() - fromHead);
            if (size == 0 && inflater->betweenMembers)
                break;
            if (size == 0)
                throw InputError(name + ": the gzip data end too early: the file is truncated");
            stream.next_in = reinterpret_cast<Bytef*>(inflater->packed.data());
            stream.avail_in = static_cast<uInt>(size);
        }
        if (inflater->betweenMembers)
        {
            inflateReset(&stream);
            inflater->betweenMembers = false;
        }
        const int status = inflate(&stream, Z_NO_FLUSH);
        if (status == Z_MEM_ERROR)
            throw std::bad_alloc();
        if (status == Z_STREAM_END)
            inflater->betweenMembers = true;
        else if (status != Z_OK && status != Z_BUF_ERROR)
            throw InputError(name + ": the gzip data are damaged" +
                             (stream.msg ? " (" + std::string(stream.msg) + ")" : std::string()));
    }
    return capacity - stream.avail_out;
}

bool beginsLikePackedData(std::string_view text)
{
    return isGzip(text) || ArchiveUnpacker::isPacked(text);
}

} // namespace krige
