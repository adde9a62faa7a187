#ifndef FENN_HOST_MODEL_SETTINGKEYS_H
#define FENN_HOST_MODEL_SETTINGKEYS_H

#include <string>
#include <vector>

#include "host/model/Settings.h"

namespace krige
{

/// A setting of the model under the name that a person gives it: --KEY on the command line, KEY in a settings file.
struct SettingKey
{
    const char* key;
    const char* typeName; // of its value, for the help
    const char* help;

    /// Reads the setting's value from text. Throws UsageError that begins with name, the option or key that was typed.
    void (*apply)(Settings& settings, const std::string& name, const std::string& text);
};

/// All settings, in the order of the help.
const std::vector<SettingKey>& settingKeys();

/// Throws UsageError that names the keys there are.
const SettingKey& findSettingKey(const std::string& key);

/// Sets what key stands for. Throws UsageError that names the key and the value, or the keys there are.
void applySetting(Settings& settings, const std::string& key, const std::string& text);

} // namespace krige

#endif
