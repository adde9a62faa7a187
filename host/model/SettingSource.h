#ifndef FENN_HOST_MODEL_SETTINGSOURCE_H
#define FENN_HOST_MODEL_SETTINGSOURCE_H

#include <string>

#include "host/model/SettingKeys.h"

namespace krige
{

/// The settings that one source gives, a file or the command line. A later source wins over an earlier one; within one,
/// settings that contradict each other are an error.
class SettingSource
{
public:
    /// settings must outlive this.
    explicit SettingSource(Settings& settings_) : settings(settings_) {}

    /// As SettingKey::apply. Throws UsageError also where --duplicates does not merge and --duplicate-tolerance does,
    /// or the other way round.
    void apply(const SettingKey& key, const std::string& name, const std::string& text);

private:
    /// Whether an option of this source merges samples, and the option as it was typed; no text: not given.
    struct Merging
    {
        std::string text;
        bool merges = false;
    };

    Settings& settings;
    Merging rule;
    Merging tolerance;
};

} // namespace krige

#endif
