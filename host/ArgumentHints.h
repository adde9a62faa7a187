#ifndef FENN_HOST_ARGUMENTHINTS_H
#define FENN_HOST_ARGUMENTHINTS_H

#include <string>
#include <vector>

namespace CLI
{
class App;
class ParseError;
} // namespace CLI

namespace krige
{

/// What is wrong with a command line and what may be meant, after the parser gave it up: an unknown subcommand or
/// option, a list with blanks in it, --output where --outputs is meant.
///
/// app: it has parsed words, the arguments behind the program's name, and has thrown error.
std::string describeParseError(const CLI::App& app, const CLI::ParseError& error,
                               const std::vector<std::string>& words);

} // namespace krige

#endif
