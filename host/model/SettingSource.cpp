#include "host/model/SettingSource.h"

#include <string_view>

#include "host/text/HostErrors.h"

namespace krige
{

void SettingSource::apply(const SettingKey& key, const std::string& name, const std::string& text)
{
    key.apply(settings, name, text);
    const bool isRule = std::string_view(key.key) == "duplicates";
    if (!isRule && std::string_view(key.key) != "duplicate-tolerance")
        return;
    Merging& given = isRule ? rule : tolerance;
    given.text = name + " " + text;
    given.merges = settings.duplicateTolerance >= 0.0;
    if (!rule.text.empty() && !tolerance.text.empty() && rule.merges != tolerance.merges)
        throw UsageError(rule.text + (rule.merges ? " merges samples, " : " merges no samples, ") + tolerance.text +
                         (tolerance.merges ? " does" : " does not") + "; leave one of them out");
}

} // namespace krige
