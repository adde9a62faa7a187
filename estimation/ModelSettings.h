#ifndef FENN_ESTIMATION_MODELSETTINGS_H
#define FENN_ESTIMATION_MODELSETTINGS_H

#include <cstddef>
#include <vector>

namespace fenn::estimation
{

/// The settings of a KrigingSurrogateModel, in the order and with the meaning of its constructor; as they stand here
/// they are the defaults. A plain value.
struct ModelSettings
{
    double duplicateTolerance = -1.0; // fraction of each input variable's range; negative merges nothing
    std::vector<double> scaleFactors; // empty: automatic; positive ones are relative weights, -k is k times automatic
    int driftOrder = 0;
    double rangeFraction = 1.0; // semivariogram range over the diagonal of the normalised sample box; may exceed 1
    double nugget = 0.0;        // with sill 1
    int numNearestPoints = 0;   // 0: global
};

bool operator==(const ModelSettings& a, const ModelSettings& b);

/// Throws std::invalid_argument that names the setting and its value when it is outside what a model of numInputVars
/// input variables can mean: a NaN tolerance, as many scale factors as variables or none, all of them finite, drift
/// order 0 to 4, a finite range fraction of at least 0, nugget 0 to 1, no negative number of nearest points. Scale
/// factors of 0 and other magnitudes that no model takes are left to the library's Error.
void checkSettings(const ModelSettings& settings, std::size_t numInputVars);

/// Whether a model can scale an input variable automatically whose samples span this range: the library takes it
/// neither for zero nor for infinite.
bool isScalableRange(double range);

/// Whether a model of so many points, counted after merging, uses all of them for every estimate.
bool usesAllPoints(const ModelSettings& settings, std::size_t numPoints);

} // namespace fenn::estimation

#endif
