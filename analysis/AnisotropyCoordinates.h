#ifndef FENN_ANALYSIS_ANISOTROPYCOORDINATES_H
#define FENN_ANALYSIS_ANISOTROPYCOORDINATES_H

#include <optional>
#include <vector>

#include "analysis/Anisotropy.h"
#include "analysis/SearchSpace.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"

namespace fenn::analysis
{

/// The settings of a model, and the anisotropy by which its inputs are rotated and stretched before it, if by any.
struct SettingsWithAnisotropy
{
    ModelSettings settings;
    std::optional<Anisotropy> anisotropy;
};

/// Range, nugget and anisotropy of a model of two inputs as four coordinates of even scale:
///
///     log2 of the range,  the root of the nugget,  log2(ratio) cos(2 angle),  log2(ratio) sin(2 angle)
///
/// The last two have no seam: a direction and its opposite are one, and where the ratio is 1 the angle does not matter.
/// The range is the geometric mean of the longer and the shorter one, in input units over the diagonal of the samples'
/// box, so that it hardly changes with the ratio.
///
/// Refers to the samples, which must outlive it.
class AnisotropyCoordinates
{
public:
    /// space: of a maxRatio above 1. Throws std::invalid_argument unless there are two input variables.
    AnisotropyCoordinates(const SampleSet& samples_, const SearchSpace& space);

    /// Scale factors are taken as 1 each.
    std::vector<double> toCoordinates(const SettingsWithAnisotropy& settings) const;

    /// The base with scale factors of 1 and what the coordinates say, brought into the bounds; the ratio to 3
    /// significant digits, the angle to a tenth of a degree. Without an anisotropy where the ratio comes out as 1.
    SettingsWithAnisotropy toSettings(const std::vector<double>& coordinates, const ModelSettings& base) const;

private:
    /// log2 of the factor from the coordinates' range to the range fraction.
    double calcRangeShift(const std::optional<Anisotropy>& anisotropy) const;

    const SampleSet& samples;
    SettingsCoordinates rangeAndNugget;
    double largestLog2Ratio;
    double diagonal; // of the samples' box
};

} // namespace fenn::analysis

#endif
