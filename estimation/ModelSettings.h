#ifndef FENN_ESTIMATION_MODELSETTINGS_H
#define FENN_ESTIMATION_MODELSETTINGS_H

#include <cstddef>
#include <optional>
#include <vector>

namespace fenn::estimation
{

/// The settings of a KrigingSurrogateModel, in the order and with the meaning of its constructor. The initial values
/// are the defaults. A plain value.
struct ModelSettings
{
    double duplicateTolerance = -1.0; // fraction of each input variable's range; negative merges nothing
    std::vector<double> scaleFactors; // empty: automatic; positive ones are relative weights, -k is k times automatic
    int driftOrder = 0;
    double rangeFraction = 1.0; // semivariogram range over the diagonal of the normalised sample box; may exceed 1
    double nugget = 0.0;        // with sill 1
    int numNearestPoints = 0;   // 0: global
    // The range in the units of the inputs, which share one scale then (hasOneScale); takes the place of the fraction.
    std::optional<double> rangeInInputUnits{};
};

bool operator==(const ModelSettings& a, const ModelSettings& b);

/// Throws std::invalid_argument that names the setting and its value unless all of this holds: the tolerance is not
/// NaN; there are no scale factors or one for each of the numInputVars input variables, all finite; the drift order is
/// 0 to 4; the range fraction is finite and at least 0; a range in input units likewise, and the inputs have one scale;
/// the nugget is 0 to 1; the number of nearest points is not negative. Scale factors of 0 and other magnitudes that a
/// model refuses are left to the library's Error.
void checkSettings(const ModelSettings& settings, std::size_t numInputVars);

/// Whether automatic scaling accepts an input variable whose samples span this range: above 1e-150 and below 1e150.
bool isScalableRange(double range);

/// Whether these settings give all inputs one scale, whatever the samples: there is one input, or the scale factors are
/// positive and equal. A range has the same length in every direction then.
bool hasOneScale(const ModelSettings& settings, std::size_t numInputVars);

/// Whether a model of numPoints points, counted after merging, uses all of them for every estimate.
bool usesAllPoints(const ModelSettings& settings, std::size_t numPoints);

} // namespace fenn::estimation

#endif
