#include "host/text/HelpFormatter.h"

#include <sstream>

namespace krige
{

namespace
{

constexpr std::size_t lineWidth = 80;
constexpr std::size_t indentOfMeaning = 8;

/// One paragraph in lines of up to 80 columns.
std::string wrap(const std::string& text, std::size_t indent)
{
    std::istringstream words(text);
    std::string wrapped;
    std::string line(indent, ' ');
    for (std::string word; words >> word;)
    {
        if (line.size() > indent && line.size() + 1 + word.size() > lineWidth)
        {
            wrapped += line + "\n";
            line.assign(indent, ' ');
        }
        line += (line.size() > indent ? " " : "") + word;
    }
    return wrapped + line + "\n";
}

} // namespace

std::string HelpFormatter::make_option(const CLI::Option* option, bool isPositional) const
{
    return "  " + make_option_name(option, isPositional) + make_option_opts(option) + "\n" +
           wrap(make_option_desc(option), indentOfMeaning);
}

/// The kind of value alone. Which options exclude each other is said when they are used together.
std::string HelpFormatter::make_option_opts(const CLI::Option* option) const
{
    return option->get_type_size() != 0 && !option->get_type_name().empty() ? " " + option->get_type_name() : "";
}

std::string HelpFormatter::make_subcommand(const CLI::App* subcommand) const
{
    return "  " + subcommand->get_name() + "\n" + wrap(subcommand->get_description(), indentOfMeaning);
}

/// Paragraphs are wrapped; indented lines, the examples, stay as they are.
std::string HelpFormatter::make_footer(const CLI::App* app) const
{
    std::istringstream lines(app->get_footer());
    std::string footer = "\n";
    for (std::string line; std::getline(lines, line);)
        footer += line.empty() ? "\n" : line[0] == ' ' ? line + "\n" : wrap(line, 0);
    return footer;
}

} // namespace krige
