#ifndef FENN_HOST_FILES_ARCHIVEUNPACKER_H
#define FENN_HOST_FILES_ARCHIVEUNPACKER_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct archive;
struct archive_entry;

namespace krige
{

/// Unpacks data of xz, zstd or bzip2, or the only file of a zip archive, by libarchive. Folders in the archive, and
/// what a Mac adds, do not count as files.
///
/// Errors are InputError with the file's name: damaged data or data that end too early, an archive with another number
/// of files than one (they are named), an encrypted file.
class ArchiveUnpacker
{
public:
    /// The longest mark by which packed data are known.
    static constexpr std::size_t markLength = 10;

    /// Whether data that begin so are packed in one of these ways.
    static bool isPacked(std::string_view head);

    /// descriptor: an open file or pipe, which stays the caller's; head_: what has been read of it, at least markLength
    /// bytes where there are as many. name_: for messages.
    ArchiveUnpacker(int descriptor_, std::string head_, std::string name_);
    ArchiveUnpacker(const ArchiveUnpacker& other) = delete;
    ArchiveUnpacker& operator=(const ArchiveUnpacker& other) = delete;
    ~ArchiveUnpacker();

    /// Unpacks capacity bytes; fewer only at the end of the data, and 0 after it.
    std::size_t read(char* bytes, std::size_t capacity);

private:
    struct Source;

    void open();
    archive_entry* findNextFile();
    void checkHoldsOneFile();
    [[noreturn]] void throwSeveral(std::string names, std::size_t count) const;
    [[noreturn]] void throwDamaged() const;

    std::string name;
    const char* format;
    bool isZip;
    std::unique_ptr<Source> source;
    struct ArchiveCloser
    {
        void operator()(archive* opened) const;
    };
    std::unique_ptr<archive, ArchiveCloser> reader;
    std::string fileName; // of the zip archive's file
    bool isAtEnd = false;
};

} // namespace krige

#endif
