#ifndef FENN_HOST_FILES_INPUTFILE_H
#define FENN_HOST_FILES_INPUTFILE_H

#include <cstddef>
#include <memory>
#include <string>

namespace krige
{

class MapTable;

/// The bytes of a file, or of standard input where the path is "-". Data that begin with the mark of gzip are unpacked.
/// A file of points or a raster (isMapFile) reads as the CSV text of a table (MapTable).
///
/// Errors are InputError with the file's name: it cannot be opened or read, it is a folder, its packed data are damaged
/// or end too early.
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
    void detectGzip();

    std::string name;
    int descriptor = -1;
    std::string head; // the first bytes, read to tell what they are
    std::size_t headUsed = 0;
    std::unique_ptr<Inflater> inflater; // null: plain
    std::unique_ptr<MapTable> table;    // of a file of maps; null: bytes
};

/// Whether a path stands for standard input or output.
inline bool isStandardStream(const std::string& path)
{
    return path == "-";
}

} // namespace krige

#endif
