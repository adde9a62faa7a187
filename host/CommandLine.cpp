#include "host/CommandLine.h"

#include <exception>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/commands/InfoCommand.h"
#include "host/commands/PredictCommand.h"
#include "host/commands/ReportCommand.h"
#include "host/commands/TuneCommand.h"
#include "host/commands/ValidateCommand.h"
#include "host/commands/VariogramCommand.h"
#include "host/text/Console.h"
#include "host/text/HelpFormatter.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

constexpr int statusDone = 0;
constexpr int statusFailed = 1;
constexpr int statusUsage = 2;
constexpr int statusInterrupted = 130; // as the shell has it for a process that SIGINT ended

/// What krige can do, in the order of its help.
struct Subcommand
{
    const char* name;
    const char* description;
    std::unique_ptr<Command> (*make)(CLI::App& app);
    bool reports; // on standard error, and so takes --quiet and --progress
};

template <typename T>
std::unique_ptr<Command> make(CLI::App& app)
{
    return std::make_unique<T>(app);
}

constexpr Subcommand subcommands[] = {
    {"predict", "Estimate at targets from a file or on a grid", make<PredictCommand>, true},
    {"validate", "Cross-validate, or compare estimates with known values", make<ValidateCommand>, true},
    {"tune", "Search for the settings that estimate best", make<TuneCommand>, true},
    {"variogram", "Compare the empirical semivariogram with the model's", make<VariogramCommand>, true},
    {"report", "Write a page about samples and their model: data, validation, maps", make<ReportCommand>, true},
    {"info", "Describe a sample file, and the memory and time that a model takes", make<InfoCommand>, false},
};

std::string listSubcommands()
{
    std::string list;
    for (const Subcommand& subcommand : subcommands)
    {
        if (!list.empty())
            list += &subcommand == std::end(subcommands) - 1 ? " and " : ", ";
        list += subcommand.name;
    }
    return list;
}

int reportUsageError(std::ostream& err, const CLI::App& app, const char* message)
{
    std::string command = "krige";
    for (const CLI::App* subcommand : app.get_subcommands())
        command += " " + subcommand->get_name();
    err << "krige: " << message << "\nSee '" << command << " --help'.\n";
    return statusUsage;
}

/// The parser misses a subcommand before it sees what stands in its place.
std::string describeParseError(const CLI::App& app, const CLI::ParseError& error)
{
    const std::vector<std::string> unknown = app.remaining();
    if (!app.get_subcommands().empty() || unknown.empty())
        return error.what();
    return quoteForMessage(unknown.front()) + " is none of the subcommands " + listSubcommands();
}

int parseAndRun(int argc, const char* const* argv, std::ostream& out, std::ostream& err)
{
    CLI::App app("Kriging estimates from scattered samples.", "krige");
    app.set_version_flag("--version", "krige " KRIGE_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.formatter(std::make_shared<HelpFormatter>()); // for the subcommands too
    app.footer("Exit status: 0 done, 1 wrong input or a failure, 2 wrong usage; 130 when stopped with Ctrl-C, as the "
               "shell sees "
               "it: no output is left then, but the best settings so far of krige tune.\n\nSee 'krige SUBCOMMAND "
               "--help' for the options of each.\n\nExamples:\n"
               "  krige info samples.csv\n"
               "  krige tune samples.csv --inputs x,y --outputs z -o best.toml\n"
               "  krige predict samples.csv --inputs x,y --outputs z --config best.toml --grid 200x100 -o grid.csv "
               "--plot grid.png");
    ConsoleOptions consoleOptions;
    std::map<std::string, std::unique_ptr<Command>> commands;
    for (const Subcommand& subcommand : subcommands)
    {
        CLI::App& options = *app.add_subcommand(subcommand.name, subcommand.description);
        commands[subcommand.name] = subcommand.make(options);
        if (subcommand.reports)
            addConsoleOptions(options, consoleOptions);
    }

    try
    {
        app.parse(argc, argv);
        Console console(err, consoleOptions);
        commands.at(app.get_subcommands().front()->get_name())->run(out, console);
        return statusDone;
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() == 0) // help or version
        {
            app.exit(error, out, err);
            return statusDone;
        }
        return reportUsageError(err, app, describeParseError(app, error).c_str());
    }
    catch (const UsageError& error)
    {
        return reportUsageError(err, app, error.what());
    }
}

} // namespace

int runCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& err)
{
    try
    {
        return parseAndRun(argc, argv, out, err);
    }
    catch (const ClosedPipe&) // as quiet as the signal that most programs get
    {
    }
    catch (const Interrupted& interrupted)
    {
        err << "krige: " << interrupted.what() << '\n';
        return statusInterrupted;
    }
    catch (const std::bad_alloc&)
    {
        err << "krige: there is not enough memory\n";
    }
    catch (const std::exception& error)
    {
        err << "krige: " << error.what() << '\n';
    }
    return statusFailed;
}

} // namespace krige
