#include "host/CommandLine.h"

#include <exception>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "host/commands/InfoCommand.h"
#include "host/commands/PredictCommand.h"
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
    return quoteForMessage(unknown.front()) + " is none of the subcommands predict, validate, tune, variogram and info";
}

int parseAndRun(int argc, const char* const* argv, std::ostream& out, std::ostream& err)
{
    CLI::App app("Kriging estimates from scattered samples.", "krige");
    app.set_version_flag("--version", "krige " KRIGE_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.formatter(std::make_shared<HelpFormatter>()); // for the subcommands too
    app.footer("Exit status: 0 done, 1 wrong input or a failure, 2 wrong usage; 130 when stopped with Ctrl-C, as the "
               "shell sees "
               "it: no output is left then.\n\nSee 'krige SUBCOMMAND --help' for the options of each.\n\nExamples:\n"
               "  krige info samples.csv\n"
               "  krige tune samples.csv --inputs x,y --outputs z -o best.toml\n"
               "  krige predict samples.csv --inputs x,y --outputs z --config best.toml --grid 200x100 -o grid.csv "
               "--plot grid.png");
    const PredictCommand predict(*app.add_subcommand("predict", "Estimate at targets from a file or on a grid"));
    const ValidateCommand validate(
        *app.add_subcommand("validate", "Cross-validate, or compare estimates with known values"));
    const TuneCommand tune(*app.add_subcommand("tune", "Search for the settings that estimate best"));
    const VariogramCommand variogram(
        *app.add_subcommand("variogram", "Compare the empirical semivariogram with the model's"));
    const InfoCommand info(
        *app.add_subcommand("info", "Describe a sample file, and the memory and time that a model takes"));
    ConsoleOptions consoleOptions;
    for (CLI::App* const subcommand : app.get_subcommands({}))
    {
        if (subcommand->get_name() != "info")
            addConsoleOptions(*subcommand, consoleOptions);
    }

    try
    {
        app.parse(argc, argv);
        Console console(err, consoleOptions);
        if (app.got_subcommand("predict"))
            predict.run(console);
        else if (app.got_subcommand("validate"))
            validate.run(out, console);
        else if (app.got_subcommand("tune"))
            tune.run(out, console);
        else if (app.got_subcommand("info"))
            info.run(out);
        else
            variogram.run(out, console);
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
