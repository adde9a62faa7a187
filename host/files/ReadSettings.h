#ifndef FENN_HOST_FILES_READSETTINGS_H
#define FENN_HOST_FILES_READSETTINGS_H

#include <string>

#include "host/files/MissingMarks.h"

namespace CLI
{
class App;
}

namespace krige
{

/// How the files of a run are read, with the defaults of the command line.
struct ReadSettings
{
    char delimiter = '\0';    // NUL: chosen by the header row
    bool skipMissing = false; // a cell without a number is no error, with marks: an empty one
    MissingMarks missing;     // cells with one of these hold no value
    std::string crs{};        // coordinate reference system of the inputs; empty: the file's own
    std::string projection{}; // to which the inputs are brought; empty: left as they are
};

/// Adds --delimiter to a subcommand; reading must live until the command line has been parsed. A value that cannot be
/// a delimiter ends parsing with UsageError.
void addDelimiterOption(CLI::App& command, ReadSettings& reading);

/// Adds --missing likewise.
void addMissingOption(CLI::App& command, ReadSettings& reading);

/// Adds --crs and --project likewise.
void addPlaceOptions(CLI::App& command, ReadSettings& reading);

/// Adds --delimiter, --missing and --skip-missing.
void addReadOptions(CLI::App& command, ReadSettings& reading);

} // namespace krige

#endif
