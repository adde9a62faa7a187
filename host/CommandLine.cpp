#include "host/CommandLine.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <ostream>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/ArgumentHints.h"
#include "host/commands/InfoCommand.h"
#include "host/commands/PredictCommand.h"
#include "host/commands/ReportCommand.h"
#include "host/commands/TuneCommand.h"
#include "host/commands/ValidateCommand.h"
#include "host/commands/VariogramCommand.h"
#include "host/files/InputFile.h"
#include "host/files/OutputPlace.h"
#include "host/text/Console.h"
#include "host/text/HelpFormatter.h"
#include "host/text/HostErrors.h"

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

int reportUsageError(std::ostream& err, const CLI::App& app, const char* message)
{
    std::string command = "krige";
    for (const CLI::App* subcommand : app.get_subcommands())
        command += " " + subcommand->get_name();
    err << "krige: " << message << "\nSee '" << command << " --help'.\n";
    return statusUsage;
}

/// `krige help predict` is `krige predict --help`. Throws UsageError for more than one subcommand.
std::vector<std::string> withHelpOption(std::vector<std::string> words)
{
    if (words.empty() || words.front() != "help")
        return words;
    if (words.size() > 2)
        throw UsageError("help: name one subcommand");
    words.erase(words.begin());
    const auto isNamed = [&](const Subcommand& subcommand)
    {
        return words.front() == subcommand.name;
    };
    // Without a subcommand of that name the option would be the program's own.
    if (words.empty() || std::any_of(std::begin(subcommands), std::end(subcommands), isNamed))
        words.emplace_back("--help");
    return words;
}

/// Temporary files of killed runs where this one is going to write: they may be large, and their names are hidden.
void nameLeftovers(const CLI::App& subcommand, std::ostream& report)
{
    std::set<std::string> named;
    for (const char* const name : {"--output", "--trials", "--duplicates-report", "--plot"})
    {
        const CLI::Option* const option = subcommand.get_option_no_throw(name);
        if (!option || option->count() == 0 || isStandardStream(option->results().front()))
            continue;
        for (const std::string& path : findLeftovers(option->results().front()))
        {
            if (named.insert(path).second)
                report << "left over: " << path << ", a temporary file of a run that was killed; remove it\n";
        }
    }
}

/// What has been printed may still be on its way.
void finishOutput(std::ostream& out)
{
    errno = 0;
    if (out.flush())
        return;
    if (errno == EPIPE)
        throw ClosedPipe();
    throw InputError("standard output: writing failed" +
                     (errno == 0 ? std::string() : ": " + std::generic_category().message(errno)));
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
               "--help' or 'krige help SUBCOMMAND' for the options of each.\n\nExamples:\n"
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

    std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    try
    {
        words = withHelpOption(words);
        app.parse(std::vector<std::string>(words.rbegin(), words.rend())); // the parser takes the last one first
        Console console(err, consoleOptions);
        const CLI::App& subcommand = *app.get_subcommands().front();
        nameLeftovers(subcommand, console.getReport());
        commands.at(subcommand.get_name())->run(out, console);
        finishOutput(out);
        return statusDone;
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() == 0) // help or version
        {
            app.exit(error, out, err);
            finishOutput(out);
            return statusDone;
        }
        return reportUsageError(err, app, describeParseError(app, error, words).c_str());
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
