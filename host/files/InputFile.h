#ifndef FENN_HOST_FILES_INPUTFILE_H
#define FENN_HOST_FILES_INPUTFILE_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace krige
{

class ArchiveUnpacker;
class MapTable;

/// The bytes of a file, or of standard input where the path is "-". Data that begin with the mark of gzip, xz, zstd,
/// bzip2 or zip are unpacked; a zip archive holds one file. A file of points or a raster (isMapFile) reads as the CSV
/// text of a table (MapTable).
///
/// Errors are InputError with the file's name: it cannot be opened or read (a name that may be meant is suggested), it
/// is a folder, its packed data are damaged or end too early, an archive holds several files.
class InputFile
{
public:
    explicit InputFile(const std::string& path);
    InputFile(const InputFile& other) = delete;
    InputFile& operator=(const InputFile& other) = delete;
    ~InputFile();

    /// Reads capacity bytes; fewer only at the end of the file, and 0 after it.
    std::size_t read(char* bytes, std::size_t capacity);

    /// For messages: the path, or "standard input".
    const std::string& getName() const
    {
        return name;
    }

private:
    struct Inflater;

    std::size_t readRaw(char* bytes, std::size_t capacity);
    std::size_t readPacked(char* bytes, std::size_t capacity);
    void detectPacking();

    std::string name;
    int descriptor = -1;
    std::string head; // the first bytes, read to tell what they are
    std::size_t headUsed = 0;
    std::unique_ptr<Inflater> inflater;        // null: no gzip
    std::unique_ptr<ArchiveUnpacker> unpacker; // null: not packed in another way
    std::unique_ptr<MapTable> table;           // of a file of maps; null: bytes
};

/// Whether a text at the beginning of a file would be taken for packed data.
bool beginsLikePackedData(std::string_view text);

/// Whether a path stands for standard input or output.
inline bool isStandardStream(const std::string& path)
{
    return path == "-";
}

} // namespace krige

#endif
