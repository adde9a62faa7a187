#ifndef FENN_HOST_PICTURES_PICTUREOPTIONS_H
#define FENN_HOST_PICTURES_PICTUREOPTIONS_H

#include <string>
#include <vector>

#include "host/pictures/Picture.h"
#include "host/targets/PredictionColumns.h"

namespace CLI
{
class App;
}

namespace krige
{

/// What the command line says about a picture.
struct PictureOptions
{
    std::string path; // empty: no picture
    std::string title;
    PictureSize size;
    std::vector<std::string> outputUnits; // one per output; empty: those of the columns' names

    /// Of an output; empty: not said.
    std::string unitOf(std::size_t output) const
    {
        return outputUnits.empty() ? std::string() : outputUnits[output];
    }
};

enum class PointStyle
{
    None,
    Dots,
    Values
};

/// What it says about a picture of estimates besides.
struct SurfaceOptions : PictureOptions
{
    Quantity quantity = Quantity::Estimate;
    bool withStandardErrors = false; // beside the estimates
    bool withContours = false;
    PointStyle points = PointStyle::Dots;
};

/// Adds --plot, whose help begins with shown ("Picture of ..."), --title, --plot-size and --output-units. Options must
/// live until the command line has been parsed; malformed values end parsing with UsageError.
void addPictureOptions(CLI::App& command, PictureOptions& options, const std::string& shown);

/// Adds --plot-column, --plot-both, --contours and --points.
void addSurfaceOptions(CLI::App& command, SurfaceOptions& options);

/// Throws UsageError where there is not one unit per output, and for a picture that cannot be drawn: see
/// checkPicturePath. To be called before the work.
void checkPictureOptions(const PictureOptions& options, std::size_t numOutputs);

} // namespace krige

#endif
