#include "host/ArgumentHints.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

#include <CLI/CLI.hpp>

#include "host/text/NumberText.h"
#include "host/text/Spelling.h"

namespace krige
{

namespace
{

using Words = std::vector<std::string>;

bool isOption(const std::string& word)
{
    return word.size() > 1 && word.front() == '-';
}

bool contains(const Words& words, const std::string& word)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

bool isFile(const std::string& path)
{
    std::error_code error;
    return std::filesystem::exists(path, error);
}

Words namesOfSubcommands(const CLI::App& app)
{
    Words names;
    for (const CLI::App* subcommand : app.get_subcommands({}))
        names.push_back(subcommand->get_name());
    return names;
}

Words longNames(const CLI::App& subcommand)
{
    Words names;
    for (const CLI::Option* option : subcommand.get_options())
        names.insert(names.end(), option->get_lnames().begin(), option->get_lnames().end());
    return names;
}

std::string joined(const Words& words, const char* separator)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : separator) + word;
    return text;
}

std::string describeNoSubcommand(const CLI::App& app, const std::string& word)
{
    const Words names = namesOfSubcommands(app);
    if (isOption(word))
        return word + " stands before the subcommand; write krige SUBCOMMAND first, one of " + joined(names, ", ");
    Words others(names.begin(), names.end() - 1);
    const std::string message =
        quoteForMessage(word) + " is none of the subcommands " + joined(others, ", ") + " and " + names.back();
    const std::string meant = suggestMeant(word, names);
    return meant.empty() && isFile(word) ? message + "; to look at a file: krige info " + word : message + meant;
}

/// As it was typed, up to its value.
std::string describeUnknownOption(const CLI::App& app, const CLI::App& subcommand, const std::string& word)
{
    const std::string typed = word.substr(0, word.find('='));
    std::string bare = typed.substr(std::min(typed.find_first_not_of('-'), typed.size()));
    std::replace(bare.begin(), bare.end(), '_', '-');
    const Words names = longNames(subcommand);
    const std::string meant = findMeant(bare, names);
    if (!meant.empty())
        return typed + ": there is no such option; did you mean --" + meant + "?";
    for (const CLI::App* other : app.get_subcommands({}))
    {
        if (contains(longNames(*other), bare))
            return typed + ": is an option of krige " + other->get_name() + ", not of krige " + subcommand.get_name();
    }
    return typed + ": there is no such option of krige " + subcommand.get_name();
}

/// "--inputs x,y" for `--inputs x y`: where words without a file's name stand behind an option's value. Empty where
/// that is nowhere so.
std::string findSplitList(const Words& words)
{
    const Words lists{"--inputs", "--outputs", "--keep", "--missing", "--fix", "--sill", "--scale", "--grid"};
    for (std::size_t i = 0; i + 2 < words.size(); ++i)
    {
        if (!contains(lists, words[i]) || isOption(words[i + 1]))
            continue;
        Words items{words[i + 1]};
        for (std::size_t k = i + 2; k < words.size() && !isOption(words[k]) && !isFile(words[k]); ++k)
            items.push_back(words[k]);
        if (items.size() > 1)
            return words[i] + " " + joined(items, ",");
    }
    return {};
}

std::string describeUnexpectedWord(const CLI::App& subcommand, const std::string& word, const Words& words)
{
    const std::string meant = findSplitList(words);
    if (!meant.empty())
        return "a list is written with commas and without blanks; did you mean " + meant + "?";
    const CLI::Option* const samples = subcommand.get_option_no_throw("SAMPLES");
    const std::string expected = samples && samples->count() > 0
                                     ? "; SAMPLES is " + quoteForMessage(samples->results().front()) + ", one file only"
                                     : "";
    return quoteForMessage(word) + " is not expected" + expected;
}

/// The value of --output where --outputs is missing; empty where that is not so.
std::string findValueOfOutput(const CLI::App& subcommand, const Words& words)
{
    const CLI::Option* const outputs = subcommand.get_option_no_throw("--outputs");
    const auto output = std::find(words.begin(), words.end(), "--output");
    const bool isMeant = outputs && outputs->get_required() && outputs->count() == 0 &&
                         subcommand.get_option_no_throw("--output") && output != words.end() &&
                         std::next(output) != words.end();
    return isMeant ? *std::next(output) : std::string();
}

} // namespace

std::string describeParseError(const CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& words)
{
    const Words unexpected = app.remaining(true);
    if (app.get_subcommands().empty())
        return unexpected.empty() ? error.what() : describeNoSubcommand(app, unexpected.front());
    const Words early = app.remaining();
    if (!early.empty() && isOption(early.front()))
        return describeNoSubcommand(app, early.front());
    const CLI::App& subcommand = *app.get_subcommands().front();
    const auto option = std::find_if(unexpected.begin(), unexpected.end(), isOption);
    if (option != unexpected.end())
        return describeUnknownOption(app, subcommand, *option);
    const std::string value = findValueOfOutput(subcommand, words);
    if (!value.empty())
        return "--outputs is required, and --output names a file to write; did you mean --outputs " + value + "?";
    if (!unexpected.empty())
        return describeUnexpectedWord(subcommand, unexpected.front(), words);
    return error.what();
}

} // namespace krige
