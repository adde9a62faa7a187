#include "host/model/SettingsFile.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "host/files/InputFile.h"
#include "host/model/DataForm.h"
#include "host/model/Distance.h"
#include "host/model/SettingKeys.h"
#include "host/model/SettingSource.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

constexpr std::size_t mostBytes = std::size_t{1} << 20; // more is no settings file

std::string readWhole(const std::string& path)
{
    InputFile file(path);
    std::string text(mostBytes + 1, '\0');
    std::size_t size = 0;
    while (size < text.size())
    {
        const std::size_t count = file.read(text.data() + size, text.size() - size);
        if (count == 0)
            break;
        size += count;
    }
    if (size > mostBytes)
        throw InputError(file.getName() + ": too long for a settings file");
    text.resize(size);
    return text;
}

std::string_view withoutBrackets(std::string_view value)
{
    if (value.size() >= 2 && value.front() == '[' && value.back() == ']')
        return trimBlanks(value.substr(1, value.size() - 2));
    return value;
}

/// Of a single text; those of an array keep theirs.
std::string_view withoutQuotes(std::string_view value)
{
    if (value.size() < 2 || value.front() != '"' || value.find('"', 1) != value.size() - 1)
        return value;
    return value.substr(1, value.size() - 2);
}

void appendSetting(std::string& text, const char* key, const std::string& value)
{
    text += std::string(key) + " = " + value + '\n';
}

} // namespace

std::string settingsFileText(const Settings& settings)
{
    std::string text = "# Settings of a krige model, for --config\n";
    const bool merges = settings.duplicateTolerance >= 0.0;
    appendSetting(text, "duplicates", merges ? "\"merge\"" : settings.keepsDuplicates ? "\"keep\"" : "\"error\"");
    if (merges)
        appendSetting(text, "duplicate-tolerance", formatNumber(settings.duplicateTolerance));
    if (!settings.scaleFactors.empty() && !settings.anisotropy)
    {
        std::string factors;
        for (const double factor : settings.scaleFactors)
            factors += (factors.empty() ? "[" : ", ") + formatNumber(factor);
        appendSetting(text, "scale", factors + "]");
    }
    appendSetting(text, "drift", std::to_string(settings.driftOrder));
    appendSetting(text, "range",
                  settings.rangeInInputUnits ? '"' + formatDistance({*settings.rangeInInputUnits, true}) + '"'
                                             : formatNumber(settings.rangeFraction));
    appendSetting(text, "nugget", formatNumber(settings.nugget));
    appendSetting(text, "nearest", std::to_string(settings.numNearestPoints));
    if (!settings.sills.empty())
        appendSetting(text, "sill", tomlOf(settings.sills));
    if (settings.anisotropy)
        appendSetting(text, "anisotropy",
                      "[" + formatNumber(settings.anisotropy->getRatio()) + ", " +
                          formatNumber(settings.anisotropy->getAngle()) + "]");
    if (settings.units.areLogarithms)
        appendSetting(text, "transform", "\"log\"");
    const std::string limits = clampText(settings.units.limits);
    if (!limits.empty())
        appendSetting(text, "clamp", '"' + limits + '"');
    return text;
}

void readSettingsFile(const std::string& path, Settings& settings)
{
    const std::string text = readWhole(path);
    SettingSource source(settings);
    std::map<std::string, std::size_t> lineOfKey;
    std::size_t lineNumber = 0;
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        std::string_view line = std::string_view(text).substr(begin, end - begin);
        begin = end + 1;
        ++lineNumber;
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        line = trimBlanks(line.substr(0, line.find('#')));
        if (line.empty())
            continue;

        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos)
            throw InputError::atLine(
                path, lineNumber, quoteForMessage(line) + " is no setting; write KEY = VALUE, for instance drift = 1");
        const std::string key(trimBlanks(line.substr(0, equals)));
        const std::string value(withoutQuotes(withoutBrackets(trimBlanks(line.substr(equals + 1)))));
        const auto known = lineOfKey.emplace(key, lineNumber);
        if (!known.second)
            throw InputError::atLine(path, lineNumber,
                                     quoteForMessage(key) + " stands in line " + std::to_string(known.first->second) +
                                         " already; keep one of them");
        try
        {
            source.apply(findSettingKey(key), key, value);
        }
        catch (const UsageError& error)
        {
            throw InputError::atLine(path, lineNumber, error.what());
        }
    }
    const auto anisotropy = lineOfKey.find("anisotropy");
    if (anisotropy != lineOfKey.end() && lineOfKey.count("scale") > 0)
        throw InputError::atLine(path, anisotropy->second, "'anisotropy' takes the place of 'scale'; keep one of them");
}

} // namespace krige
