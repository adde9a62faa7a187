#ifndef FENN_HOST_FILES_OUTPUTFILE_H
#define FENN_HOST_FILES_OUTPUTFILE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "host/files/PendingFile.h"

namespace krige
{

/// A file that appears whole or not at all (PendingFile). Pipes and devices are written to directly, and so is standard
/// output where the path is "-". A name that ends in .gz packs what is written by gzip; the same text gives the same
/// bytes.
///
/// Errors are InputError; ClosedPipe when the program that reads our standard output or pipe has ended and the signal
/// for that is ignored.
class OutputFile
{
public:
    /// Opens the temporary file; nothing is seen at the path yet.
    explicit OutputFile(const std::string& path_);
    OutputFile(const OutputFile& other) = delete;
    OutputFile& operator=(const OutputFile& other) = delete;
    ~OutputFile();

    void write(const std::string& text);

    /// Writes over or behind what is there, from this byte on. Throws InputError for packed files and for pipes, which
    /// can only be written in order.
    void writeAt(std::uint64_t offset, const std::string& bytes);

    /// Makes the file appear; the last call.
    void commit();

private:
    struct Deflater;

    void openStandardOutput();
    void checkIsOpen() const;
    void writeRaw(const char* bytes, std::size_t count);
    void deflateText(const char* text, std::size_t count, bool last);
    [[noreturn]] void throwWriteError() const;

    std::string path;                     // as given, or "standard output", for messages
    std::unique_ptr<PendingFile> pending; // null: written to directly
    std::FILE* file = nullptr;
    std::unique_ptr<Deflater> deflater; // null: plain
};

/// Throws UsageError that begins with option where outputPath is the file that is read, also through links and under
/// another name. Standard output is never standard input.
void checkIsNotInput(const char* option, const std::string& outputPath, const std::string& inputPath);

} // namespace krige

#endif
