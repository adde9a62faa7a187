#ifndef FENN_HOST_PAGE_COMMANDTEXT_H
#define FENN_HOST_PAGE_COMMANDTEXT_H

#include <set>
#include <string>
#include <vector>

#include "host/model/Settings.h"

namespace CLI
{
class App;
}

namespace krige
{

/// All settings as words of a command line: "--drift", "1", ...: what a settings file with them says.
std::vector<std::string> optionsOfSettings(const Settings& settings);

/// The words of a parsed subcommand but its settings, its --config and those of leftOut, which are names such as
/// "--output": first the sample file, then options and their values.
std::vector<std::string> typedWords(const CLI::App& command, const std::set<std::string>& leftOut);

/// As a person types it in a shell: words with special characters are quoted.
std::string shellText(const std::vector<std::string>& words);

} // namespace krige

#endif
