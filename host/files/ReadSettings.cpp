#include "host/files/ReadSettings.h"

#include <cctype>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

char parseDelimiter(const std::string& text)
{
    if (text == "tab" || text == "\\t")
        return '\t';
    if (text == "comma")
        return ',';
    if (text == "semicolon")
        return ';';
    const bool fits = text.size() == 1 && static_cast<unsigned char>(text[0]) < 0x80 &&
                      std::string_view("\"\r\n .+-").find(text[0]) == std::string_view::npos &&
                      std::isalnum(static_cast<unsigned char>(text[0])) == 0 && text[0] != '\0';
    if (!fits)
        throw UsageError("--delimiter: must be one character that no number holds, or comma, semicolon or tab, not " +
                         quoteForMessage(text));
    return text[0];
}

} // namespace

void addDelimiterOption(CLI::App& command, ReadSettings& reading)
{
    command
        .add_option_function<std::string>(
            "--delimiter", [&](const std::string& text) { reading.delimiter = parseDelimiter(text); },
            "Character between the fields of the files that are read, or comma, semicolon or tab. Default: whichever "
            "of these three occurs most often in the header row. Example: --delimiter tab")
        ->type_name("C");
}

void addReadOptions(CLI::App& command, ReadSettings& reading)
{
    addDelimiterOption(command, reading);
    command.add_flag("--skip-missing", reading.skipMissing,
                     "Leave out samples with an empty or non-numeric cell in a used column, and give nan for such "
                     "targets. Default: they are an error. Example: --skip-missing");
}

} // namespace krige
