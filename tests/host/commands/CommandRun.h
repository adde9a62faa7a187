#ifndef FENN_TESTS_HOST_COMMANDS_COMMANDRUN_H
#define FENN_TESTS_HOST_COMMANDS_COMMANDRUN_H

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/text/Console.h"

namespace krige::test
{

/// One run of a subcommand: its class alone, without the program around it. What it throws is let out.
template <typename Command>
class CommandRun
{
public:
    /// words: the command line behind the subcommand's name.
    explicit CommandRun(std::vector<std::string> words)
    {
        std::reverse(words.begin(), words.end()); // the parser takes the last one first
        app.parse(words);
    }

    Console& getConsole()
    {
        return console;
    }

    std::string getReport() const
    {
        return report.str();
    }

    CLI::App app;
    Command command{app};
    std::ostringstream out;

private:
    std::ostringstream report;
    Console console{report, ConsoleOptions()};
};

} // namespace krige::test

#endif
