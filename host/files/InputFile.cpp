#include "host/files/InputFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

#include "host/geo/MapFile.h"
#include "host/text/HostErrors.h"

namespace krige
{

namespace
{

constexpr std::size_t packedCapacity = std::size_t{1} << 16;
constexpr int gzipWindow = 15 + 16; // zlib's way to ask for the largest window within a gzip wrapper

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
        throw InputError::fromSystem(name, errno);
    try
    {
        detectGzip();
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

void InputFile::detectGzip()
{
    head.resize(2);
    head.resize(readRaw(head.data(), head.size()));
    if (head == "\x1F\x8B")
        inflater = std::make_unique<Inflater>();
}

std::size_t InputFile::read(char* bytes, std::size_t capacity)
{
    if (table)
        return table->read(bytes, capacity);
    if (inflater)
        return readPacked(bytes, capacity);
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

} // namespace krige
