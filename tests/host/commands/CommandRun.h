#ifndef FENN_TESTS_HOST_COMMANDS_COMMANDRUN_H
#define FENN_TESTS_HOST_COMMANDS_COMMANDRUN_H

#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "host/text/Console.h"
#include "tests/host/Words.h"

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
        parse(*app, std::move(words));
    }

    Console& getConsole()
    {
        return console;
    }

    std::string getReport() const
    {
        return report.str();
    }

    const std::shared_ptr<CLI::App> app = makeApp();
    Command command{*app};
    std::ostringstream out;

private:
    std::ostringstream report;
    Console console{report, ConsoleOptions()};
};

} // namespace krige::test

#endif
