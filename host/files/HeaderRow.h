#ifndef FENN_HOST_FILES_HEADERROW_H
#define FENN_HOST_FILES_HEADERROW_H

#include <cstddef>
#include <string>
#include <vector>

#include "host/files/CsvReader.h"
#include "host/files/ReadSettings.h"

namespace krige
{

/// The names of a file's columns, in UTF-8: those of its header row or, in a file without one, their numbers from 1.
class HeaderRow
{
public:
    /// Reads the first record of a file; without a header row it is the first row of values. Throws InputError when the
    /// file is empty.
    HeaderRow(CsvReader& reader, CsvRecord& record, const ReadSettings& settings_);

    const std::vector<std::string>& getNames() const
    {
        return names;
    }

    /// Whether all names are numbers where texts are to be: a file without a header row, most likely.
    bool isOfNumbers() const;

    /// The column of a name. Throws InputError that says what may be meant where there is none, or two.
    std::size_t findColumn(const std::string& name) const;

    /// The error for a header row of numbers, with the way out.
    [[noreturn]] void throwOfNumbers() const;

private:
    [[noreturn]] void throwUnknown(const std::string& name) const;

    std::string path;
    std::size_t line = 0;
    ReadSettings settings;
    std::vector<std::string> names;
};

} // namespace krige

#endif
