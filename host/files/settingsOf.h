#ifndef FENN_HOST_FILES_SETTINGSOF_H
#define FENN_HOST_FILES_SETTINGSOF_H

#include <string>

#include "host/files/ReadSettings.h"

namespace krige
{

/// How one file is read: a file of maps as CSV text with a header row (InputFile), however tables of the run look.
ReadSettings settingsOf(const std::string& path, const ReadSettings& reading);

} // namespace krige

#endif
