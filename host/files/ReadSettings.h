#ifndef FENN_HOST_READSETTINGS_H
#define FENN_HOST_READSETTINGS_H

namespace krige
{

/// How the files of a run are read, with the defaults of the command line.
struct ReadSettings
{
    char delimiter = '\0';    // NUL: told by the header row
    bool skipMissing = false; // a cell without a number is no error
};

} // namespace krige

#endif
