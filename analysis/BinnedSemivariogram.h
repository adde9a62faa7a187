#ifndef FENN_ANALYSIS_BINNEDSEMIVARIOGRAM_H
#define FENN_ANALYSIS_BINNEDSEMIVARIOGRAM_H

#include <cstddef>
#include <optional>
#include <vector>

namespace fenn
{
class ModelParts;
}

namespace fenn::analysis
{

/// Pairs of points whose normalised lags lie in [lowerLag, upperLag); the last bin holds the largest lag too.
struct LagBin
{
    double lowerLag = 0.0;
    double upperLag = 0.0;
    double meanLag = 0.0;
    double semivariance = 0.0; // half the mean squared output difference, squared units of the output
    double modelValue = 0.0;   // mean of the model's semivariogram times the sill, the sample variance if not said
    std::size_t numPairs = 0;  // never 0: bins without a pair are left out
};

/// What to bin, and how.
struct BinningOptions
{
    std::size_t outputVar = 0;
    std::size_t numLags = 15;
    double maxLag = 0.0; // normalised; 0 stands for defaultMaxLag

    // Two inputs: only pairs whose difference lies within tolerance of this direction, both in degrees, the direction
    // anticlockwise from the first input's axis, by raw inputs; 0 to 180 is enough, for a pair has no order. Pairs at
    // one place have no direction.
    std::optional<double> direction;
    double tolerance = 22.5; // 90 takes every pair

    std::optional<double> sill; // of the model, squared units of the output; none: the sample variance

    // Beyond so many pairs, points to form them from are drawn, by a fixed seed.
    std::size_t maxPairs = 50'000'000;
};

struct BinnedSemivariogram
{
    std::vector<LagBin> bins; // by ascending lag
    std::size_t numPoints = 0;
    std::size_t numPointsUsed = 0; // below numPoints where points were drawn
};

/// Half the diagonal of the normalised sample box: beyond it few pairs, all from the rim of the box, are left.
double defaultMaxLag(const ModelParts& parts);

/// The scale that all inputs share: a normalised lag over it is one in input units. None where they differ.
std::optional<double> commonScale(const ModelParts& parts);

/// Empirical (Matheron) semivariogram of an output variable beside the model's, in numLags bins of equal width from lag
/// 0 to maxLag. Over the unordered pairs of different points of the model, wherever they lie; merged samples count as
/// the averaged point that they became.
///
/// Source: N. Cressie, Statistics for Spatial Data (Wiley, 1993), section 2.4.
///
/// For n points n^2/2 evaluations and memory for n; beyond maxPairs only pairs no farther apart than maxLag in the
/// input that tells most pairs apart so, and of a share of the points where those are still too many. Throws
/// std::invalid_argument for an output variable that does not exist, for no lags, for a maximum lag that is not finite
/// and above 0, and for a direction with other than two inputs, not finite, or a tolerance that is not above 0.
BinnedSemivariogram binSemivariogram(const ModelParts& parts, const BinningOptions& options);

/// The same without bins: a line for every lag, of the pairs whose lags lie within a millionth of maxLag of their
/// smallest; lowerLag and upperLag are the smallest and the largest of them. Keeps a record of 24 bytes per pair while
/// it works; numLags counts for nothing.
BinnedSemivariogram semivariogramAtEveryLag(const ModelParts& parts, const BinningOptions& options);

} // namespace fenn::analysis

#endif
