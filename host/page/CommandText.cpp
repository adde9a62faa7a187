#include "host/page/CommandText.h"

#include <algorithm>
#include <sstream>
#include <string_view>

#include <CLI/CLI.hpp>

#include "host/model/SettingKeys.h"
#include "host/model/SettingsFile.h"

namespace krige
{

namespace
{

bool needsNoQuotes(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("_./:=,+@%-").find(c) != std::string_view::npos;
}

std::string quoteForShell(const std::string& word)
{
    if (!word.empty() && std::all_of(word.begin(), word.end(), needsNoQuotes))
        return word;
    std::string quoted = "'";
    for (const char c : word)
    {
        if (c == '\'')
            quoted += "'\\''";
        else
            quoted += c;
    }
    return quoted + "'";
}

} // namespace

std::vector<std::string> optionsOfSettings(const Settings& settings)
{
    std::vector<std::string> words;
    std::istringstream lines(settingsFileText(settings));
    for (std::string line; std::getline(lines, line);)
    {
        const std::size_t equals = line.find(" = ");
        if (line.front() == '#' || equals == std::string::npos)
            continue;
        std::string value = line.substr(equals + 3);
        // No setting's value holds these but as the file's brackets and quotes.
        value.erase(std::remove_if(value.begin(), value.end(),
                                   [](char c) { return std::string_view("[]\" ").find(c) != std::string_view::npos; }),
                    value.end());
        words.push_back("--" + line.substr(0, equals));
        words.push_back(value);
    }
    return words;
}

std::vector<std::string> typedWords(const CLI::App& command, const std::set<std::string>& leftOut)
{
    std::set<std::string> names = leftOut;
    names.insert({"--config", "--help"});
    for (const SettingKey& setting : settingKeys())
        names.insert(std::string("--") + setting.key);
    std::vector<std::string> positionals;
    std::vector<std::string> words;
    for (const CLI::Option* const option : command.get_options())
    {
        if (option->count() == 0)
            continue;
        if (option->get_positional())
        {
            positionals.insert(positionals.end(), option->results().begin(), option->results().end());
            continue;
        }
        const std::string name = "--" + option->get_single_name();
        if (names.count(name) > 0)
            continue;
        words.push_back(name);
        if (option->get_items_expected_max() > 0)
            words.insert(words.end(), option->results().begin(), option->results().end());
    }
    positionals.insert(positionals.end(), words.begin(), words.end());
    return positionals;
}

std::string shellText(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + quoteForShell(word);
    return text;
}

} // namespace krige
