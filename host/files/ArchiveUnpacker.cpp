#include "host/files/ArchiveUnpacker.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include <archive.h>
#include <archive_entry.h>
#include <unistd.h>

#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

using namespace std::string_view_literals;

constexpr std::size_t blockSize = std::size_t{1} << 16;

bool beginsWith(std::string_view text, std::string_view mark)
{
    return text.substr(0, mark.size()) == mark;
}

bool isZipMark(std::string_view head)
{
    return beginsWith(head, "PK\3\4"sv) || beginsWith(head, "PK\5\6"sv); // of the first file; of an empty archive
}

/// Null: not packed in a way that is known here.
const char* nameOfFormat(std::string_view head)
{
    if (isZipMark(head))
        return "zip";
    if (beginsWith(head, "\xfd"
                         "7zXZ\0"sv))
        return "xz";
    if (beginsWith(head, "\x28\xb5\x2f\xfd"sv))
        return "zstd";
    if (beginsWith(head, "BZh"sv) && head.size() >= ArchiveUnpacker::markLength && head.substr(4, 6) == "1AY&SY"sv)
        return "bzip2";
    return nullptr;
}

/// Entries beside the file that somebody packed.
bool isAddedByMac(std::string_view path)
{
    return beginsWith(path, "__MACOSX/"sv) || path == ".DS_Store"sv ||
           (path.size() > 10 && path.substr(path.size() - 10) == "/.DS_Store"sv);
}

std::string nameOf(archive_entry* entry)
{
    const char* const inUtf8 = archive_entry_pathname_utf8(entry);
    const char* const path = inUtf8 ? inUtf8 : archive_entry_pathname(entry);
    return path ? path : "?";
}

} // namespace

/// Where libarchive reads: the bytes that were looked at already, then the rest of the file.
struct ArchiveUnpacker::Source
{
    static la_ssize_t read(archive* opened, void* sourcePointer, const void** bytes)
    {
        auto& source = *static_cast<Source*>(sourcePointer);
        if (source.headUsed < source.head.size())
        {
            *bytes = source.head.data() + source.headUsed;
            return static_cast<la_ssize_t>(source.head.size() - std::exchange(source.headUsed, source.head.size()));
        }
        *bytes = source.block.data();
        ssize_t count = -1;
        do
            count = ::read(source.descriptor, source.block.data(), source.block.size());
        while (count < 0 && errno == EINTR);
        if (count < 0)
            archive_set_error(opened, errno, "%s", std::strerror(errno));
        return count;
    }

    static la_int64_t seek(archive* opened, void* sourcePointer, la_int64_t offset, int whence)
    {
        auto& source = *static_cast<Source*>(sourcePointer);
        const off_t begin = whence == SEEK_SET ? source.begin : 0;
        const off_t position = ::lseek(source.descriptor, begin + static_cast<off_t>(offset), whence);
        if (position < 0)
            archive_set_error(opened, errno, "%s", std::strerror(errno));
        source.headUsed = source.head.size();
        return position < 0 ? ARCHIVE_FATAL : position - source.begin;
    }

    int descriptor = -1;
    off_t begin = -1; // of the data in the file; -1: a pipe, which is read once
    std::string head;
    std::size_t headUsed = 0;
    std::vector<char> block = std::vector<char>(blockSize);
};

void ArchiveUnpacker::ArchiveCloser::operator()(archive* opened) const
{
    archive_read_free(opened);
}

bool ArchiveUnpacker::isPacked(std::string_view head)
{
    return nameOfFormat(head) != nullptr;
}

ArchiveUnpacker::ArchiveUnpacker(int descriptor_, std::string head_, std::string name_)
    : name(std::move(name_)), format(nameOfFormat(head_)), isZip(isZipMark(head_)), source(std::make_unique<Source>())
{
    source->descriptor = descriptor_;
    const off_t position = ::lseek(descriptor_, 0, SEEK_CUR);
    source->begin = position < 0 ? -1 : position - static_cast<off_t>(head_.size());
    source->head = std::move(head_);
    if (isZip && source->begin >= 0)
        checkHoldsOneFile();
    open();
    archive_entry* const entry = findNextFile();
    if (!entry && isZip)
        throw InputError(name + ": the zip archive holds no file");
    isAtEnd = !entry;
    if (!entry)
        return;
    fileName = nameOf(entry);
    if (archive_entry_is_encrypted(entry) != 0)
        throw InputError(name + ": the file in the zip archive is encrypted; unpack it first");
}

ArchiveUnpacker::~ArchiveUnpacker() = default;

void ArchiveUnpacker::open()
{
    reader.reset(archive_read_new());
    if (!reader)
        throw std::bad_alloc();
    archive* const opened = reader.get();
    // What is not there is damaged: no other format is tried.
    if (isZip)
        archive_read_support_format_zip(opened);
    else
    {
        archive_read_support_filter_xz(opened);
        archive_read_support_filter_zstd(opened);
        archive_read_support_filter_bzip2(opened);
        archive_read_support_format_raw(opened);
        archive_read_support_format_empty(opened);
    }
    archive_read_set_read_callback(opened, &Source::read);
    if (source->begin >= 0)
        archive_read_set_seek_callback(opened, &Source::seek);
    archive_read_set_callback_data(opened, source.get());
    if (archive_read_open1(opened) != ARCHIVE_OK)
        throwDamaged();
}

archive_entry* ArchiveUnpacker::findNextFile()
{
    for (;;)
    {
        archive_entry* entry = nullptr;
        const int status = archive_read_next_header(reader.get(), &entry);
        if (status == ARCHIVE_EOF)
            return nullptr;
        if (status < ARCHIVE_WARN) // warnings are of names in other encodings
            throwDamaged();
        if (!isZip || (archive_entry_filetype(entry) == AE_IFREG && !isAddedByMac(nameOf(entry))))
            return entry;
    }
}

/// Before anything is read of it, which the list at the archive's end allows. A pipe's is known at its end only.
void ArchiveUnpacker::checkHoldsOneFile()
{
    constexpr std::size_t mostShown = 12;
    open();
    std::string names;
    std::size_t count = 0;
    while (archive_entry* const entry = findNextFile())
    {
        if (++count <= mostShown)
            names += (count == 1 ? "" : ", ") + quoteForMessage(nameOf(entry));
    }
    if (count > 1)
        throwSeveral(names + (count > mostShown ? " and " + std::to_string(count - mostShown) + " more" : ""), count);
    source->headUsed = source->head.size();
    ::lseek(source->descriptor, source->begin, SEEK_SET);
}

void ArchiveUnpacker::throwSeveral(std::string names, std::size_t count) const
{
    if (names.find("'[Content_Types].xml'") != std::string::npos ||
        names.find("'META-INF/manifest.xml'") != std::string::npos)
        throw InputError(name + ": holds an office document, such as a spreadsheet; save its sheet as CSV");
    throw InputError(name + ": the zip archive holds " + std::to_string(count) + " files: " + std::move(names) +
                     "; unpack it and name one of them");
}

void ArchiveUnpacker::throwDamaged() const
{
    if (archive_errno(reader.get()) == ENOMEM)
        throw std::bad_alloc();
    const char* const reason = archive_error_string(reader.get());
    throw InputError(name + ": the " + format + " data are damaged or end too early" +
                     (reason ? " (" + std::string(reason) + ")" : std::string()));
}

std::size_t ArchiveUnpacker::read(char* bytes, std::size_t capacity)
{
    std::size_t size = 0;
    while (size < capacity && !isAtEnd)
    {
        const la_ssize_t count = archive_read_data(reader.get(), bytes + size, capacity - size);
        if (count < 0 && count != ARCHIVE_RETRY)
            throwDamaged();
        if (count == 0)
        {
            isAtEnd = true;
            archive_entry* const other = isZip ? findNextFile() : nullptr;
            if (other)
                throwSeveral(quoteForMessage(fileName) + ", " + quoteForMessage(nameOf(other)), 2);
        }
        if (count > 0)
            size += static_cast<std::size_t>(count);
    }
    return size;
}

} // namespace krige
