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

void addMissingOption(CLI::App& command, ReadSettings& reading)
{
    command
        .add_option_function<std::string>(
            "--missing", [&](const std::string& text) { reading.missing = MissingMarks("--missing", text); },
            "Texts and numbers that stand for no value in the columns of numbers: samples with one of them in a used "
            "column are left out, and such targets get nan. A number is meant however it is written; an empty word "
            "stands for empty cells. Default: none. Example: --missing -9999,NA")
        ->type_name("WORDS");
}

void addPlaceOptions(CLI::App& command, ReadSettings& reading)
{
    command
        .add_option("--crs", reading.crs,
                    "Coordinate reference system of the inputs, which maps are written with. Default: that of the "
                    "samples' file, where it has one. Example: --crs EPSG:28992")
        ->type_name("CRS");
    command
        .add_option("--project", reading.projection,
                    "Coordinate reference system to which the inputs of samples and targets are brought from that of "
                    "their files or --crs, longitudes and latitudes for instance, of which distances mean nothing; "
                    "grids and outputs are in it. Default: none. Example: --project EPSG:28992")
        ->type_name("CRS");
}

void addReadOptions(CLI::App& command, ReadSettings& reading)
{
    addDelimiterOption(command, reading);
    addMissingOption(command, reading);
    command.add_flag("--skip-missing", reading.skipMissing,
                     "Leave out samples with an empty or non-numeric cell in a used column, and give nan for such "
                     "targets; with --missing, texts that it does not list stay an error. Default: they are an error. "
                     "Example: --skip-missing");
}

} // namespace krige
