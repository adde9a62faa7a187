#ifndef FENN_HOST_FILES_OUTPUTPLACE_H
#define FENN_HOST_FILES_OUTPUTPLACE_H

#include <string>
#include <vector>

namespace krige
{

/// Throws InputError where a file cannot appear at the path: its folder is not there or is closed, or it is a folder
/// itself. Meant to be called before long work.
void checkCanBeWritten(const std::string& path);

/// Temporary files of runs that were killed beside a file that is to be written: those whose process is gone. Sorted;
/// empty where the folder cannot be read. A run on another machine that shares the folder looks like one that was
/// killed.
std::vector<std::string> findLeftovers(const std::string& outputPath);

} // namespace krige

#endif
