#include "host/pictures/PictureOptions.h"

#include <algorithm>
#include <utility>

#include <CLI/CLI.hpp>

#include "host/model/ModelOptions.h"
#include "host/pictures/Gnuplot.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

template <typename Value>
using Words = std::vector<std::pair<const char*, Value>>;

/// The value of one of the words. Throws UsageError that names them all.
template <typename Value>
Value chooseWord(const std::string& option, const std::string& text, const Words<Value>& words)
{
    std::string names;
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        if (text == words[i].first)
            return words[i].second;
        names += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + std::string(words[i].first);
    }
    throw UsageError(option + ": must be " + names + ", not " + quoteForMessage(text));
}

std::string parseTitle(const std::string& text)
{
    const auto isControl = [](unsigned char c)
    {
        return c < 0x20 || c == 0x7f;
    };
    if (trimBlanks(text).empty() || std::any_of(text.begin(), text.end(), isControl))
        throw UsageError("--title: needs a text of one line, not " + quoteForMessage(text));
    return std::string(trimBlanks(text));
}

} // namespace

void addPictureOptions(CLI::App& command, PictureOptions& options, const std::string& shown)
{
    CLI::Option* const plot = command
                                  .add_option("--plot", options.path,
                                              shown + " .png, .svg or .pdf, or its gnuplot script, .gp. Default: "
                                                      "none. Example: --plot picture.png")
                                  ->type_name("FILE");
    command
        .add_option_function<std::string>(
            "--title", [&options](const std::string& text) { options.title = parseTitle(text); },
            "Title over the picture. Default: none. Example: --title 'Zinc in the topsoil'")
        ->type_name("TEXT")
        ->needs(plot);
    command
        .add_option_function<std::string>(
            "--plot-size",
            [&options](const std::string& text) { options.size = parsePictureSize("--plot-size", text); },
            "Width and height of the picture in pixels, 96 to the inch in a .pdf; text and lines grow along. Default: "
            "as its panels need. Example: --plot-size 1600x1200")
        ->type_name("WxH")
        ->needs(plot);
    command
        .add_option_function<std::string>(
            "--output-units",
            [&options](const std::string& text) { options.outputUnits = parseNames("--output-units", text); },
            "Unit of each output, for pictures. Default: what stands in brackets at the end of the column's name, as "
            "in 'zinc [ppm]'. Example: --output-units ppm,mm")
        ->type_name("NAMES");
}

void addSurfaceOptions(CLI::App& command, SurfaceOptions& options)
{
    CLI::Option* const plot = command.get_option("--plot");
    CLI::Option* const column =
        command
            .add_option_function<std::string>(
                "--plot-column",
                [&options](const std::string& text)
                {
                    options.quantity = chooseWord<Quantity>("--plot-column", text,
                                                            {{"estimate", Quantity::Estimate},
                                                             {"stderr", Quantity::StandardError},
                                                             {"variance", Quantity::Variance},
                                                             {"lo", Quantity::LowerEnd},
                                                             {"hi", Quantity::UpperEnd}});
                },
                "What the picture shows: estimate, stderr, variance, or lo and hi, the ends of the interval of "
                "--interval, else of that of 95 %. Default: estimate. Example: --plot-column stderr")
            ->type_name("NAME")
            ->needs(plot);
    command
        .add_flag("--plot-both", options.withStandardErrors,
                  "Draw the standard errors beside the estimates. Default: off. Example: --plot-both")
        ->needs(plot)
        ->excludes(column);
    command
        .add_flag("--contours", options.withContours,
                  "Draw lines of equal values over maps. Default: off. Example: --contours")
        ->needs(plot);
    command
        .add_option_function<std::string>(
            "--points",
            [&options](const std::string& text)
            {
                options.points = chooseWord<PointStyle>(
                    "--points", text,
                    {{"none", PointStyle::None}, {"dots", PointStyle::Dots}, {"values", PointStyle::Values}});
            },
            "How samples are drawn: none, dots, or values beside dots, as many as find room. Default: dots. Example: "
            "--points values")
        ->type_name("STYLE")
        ->needs(plot);
}

void checkPictureOptions(const PictureOptions& options, std::size_t numOutputs)
{
    if (!options.outputUnits.empty() && options.outputUnits.size() != numOutputs)
        throw UsageError("--output-units: " + countOf(options.outputUnits.size(), "unit") + " for " +
                         countOf(numOutputs, "output") + "; give one each");
    if (!options.path.empty())
        checkPicturePath(options.path);
}

} // namespace krige
