#include "host/files/ReadSettings.h"

#include <cctype>
#include <string_view>

#include <CLI/CLI.hpp>

#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/ShellWord.h"
#include "host/text/Spelling.h"

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
    if (text == "space" || text == " ")
        return CsvFormat::blankRuns;
    const bool fits = text.size() == 1 && static_cast<unsigned char>(text[0]) < 0x80 &&
                      std::string_view("\"\r\n.+-").find(text[0]) == std::string_view::npos &&
                      std::isalnum(static_cast<unsigned char>(text[0])) == 0 && text[0] != '\0';
    if (!fits)
        throw UsageError("--delimiter: must be one character that no number holds, or comma, semicolon, tab or space, "
                         "not " +
                         quoteForMessage(text) + suggestMeant(text, {"comma", "semicolon", "tab", "space"}));
    return text[0];
}

bool parseDecimal(const std::string& text)
{
    if (text == "," || text == "comma")
        return true;
    if (text == "." || text == "point")
        return false;
    throw UsageError("--decimal: must be a comma or a point, not " + quoteForMessage(text));
}

std::string parseComment(const std::string& text)
{
    const bool beginsLikeAField = text.empty() || std::isdigit(static_cast<unsigned char>(text[0])) != 0 ||
                                  std::string_view("+-. \t\"\r\n").find(text[0]) != std::string_view::npos;
    if (beginsLikeAField || text.find_first_of("\r\n") != std::string::npos)
        throw UsageError("--comment: needs the text with which such lines begin, for instance '#', not " +
                         quoteForMessage(text));
    return text;
}

/// Every line with an empty first field would be a comment.
void checkCommentIsNoDelimiter(const ReadSettings& reading)
{
    if (!reading.comment.empty() && reading.comment[0] == reading.delimiter)
        throw UsageError("--comment: " + quoteForMessage(reading.comment) + " begins with the delimiter");
}

} // namespace

void addFormatOptions(CLI::App& command, ReadSettings& reading)
{
    command
        .add_option_function<std::string>(
            "--delimiter",
            [&](const std::string& text)
            {
                reading.delimiter = parseDelimiter(text);
                checkCommentIsNoDelimiter(reading);
            },
            "Character between the fields of the files that are read, or comma, semicolon, tab or space; with space, "
            "runs of spaces and tabs are one. Default: whichever of comma, semicolon and tab occurs most often in the "
            "header row. Example: --delimiter space")
        ->type_name("C");
    command
        .add_option_function<std::string>(
            "--decimal", [&](const std::string& text) { reading.hasDecimalComma = parseDecimal(text); },
            "Character before the decimals of numbers in the files that are read: a comma or a point. What is written "
            "has a point. Default: a point. Example: --decimal ,")
        ->type_name("C");
    command
        .add_option_function<std::string>(
            "--comment",
            [&](const std::string& text)
            {
                reading.comment = parseComment(text);
                checkCommentIsNoDelimiter(reading);
            },
            "Pass over lines that begin with this text. Default: there are no such lines. Example: --comment '#'")
        ->type_name("TEXT");
    command.add_flag_callback(
        "--no-header", [&] { reading.hasHeader = false; },
        "The files that are read have no header row: columns are named by number, from 1, and estimates in CSV get "
        "no header row either. Default: the first row names the columns. Example: --no-header --inputs 1,2 --outputs "
        "3");
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
    addFormatOptions(command, reading);
    addMissingOption(command, reading);
    command.add_flag("--skip-missing", reading.skipMissing,
                     "Leave out samples with an empty or non-numeric cell in a used column, and give nan for such "
                     "targets; with --missing, texts that it does not list stay an error. Default: they are an error. "
                     "Example: --skip-missing");
}

std::string formatOptionsText(const ReadSettings& reading)
{
    std::string text;
    if (reading.delimiter == '\t')
        text += " --delimiter tab";
    else if (reading.delimiter == CsvFormat::blankRuns)
        text += " --delimiter space";
    else if (reading.delimiter != '\0')
        text += " --delimiter " + quoteForShell(std::string(1, reading.delimiter));
    if (reading.hasDecimalComma)
        text += " --decimal ,";
    if (!reading.comment.empty())
        text += " --comment " + quoteForShell(reading.comment);
    if (!reading.hasHeader)
        text += " --no-header";
    if (!reading.missing.isEmpty())
        text += " --missing " + quoteForShell(reading.missing.getText());
    return text;
}

} // namespace krige
