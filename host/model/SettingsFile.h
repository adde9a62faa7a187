#ifndef FENN_HOST_MODEL_SETTINGSFILE_H
#define FENN_HOST_MODEL_SETTINGSFILE_H

#include <string>

#include "host/model/Settings.h"

namespace krige
{

/// A settings file holds the settings of a model, so that one run can hand them to the next. It is a flat TOML document
/// whose keys are the long names of the model's options:
///
///     # comment
///     drift = 1
///     range = 0.35        (or "900u")
///     scale = [1, -2]
///     duplicates = "merge"
///     sill = ["auto", 12.5]
///     transform = "log"
///
/// Keys that are left out keep their values. An array may also stand without its brackets, a text without
/// its quotes.

/// The file that makes readSettingsFile give these settings, to the bit. What is left out stands for its
/// default.
std::string settingsFileText(const Settings& settings);

/// Replaces the settings that the file names. Throws InputError with file and line for anything but known keys, each
/// once, with the values that their options take.
void readSettingsFile(const std::string& path, Settings& settings);

} // namespace krige

#endif
