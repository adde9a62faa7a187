#ifndef FENN_HOST_TEXT_HELPFORMATTER_H
#define FENN_HOST_TEXT_HELPFORMATTER_H

#include <string>

#include <CLI/CLI.hpp>

namespace krige
{

/// Help that fits 80 columns: each option on a line of its own, its meaning below, indented. The manual page and the
/// shell completion are made from these lines.
class HelpFormatter : public CLI::Formatter
{
public:
    std::string make_option(const CLI::Option* option, bool isPositional) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_subcommand(const CLI::App* subcommand) const override;
    std::string make_footer(const CLI::App* app) const override;
};

} // namespace krige

#endif
