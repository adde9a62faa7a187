#ifndef FENN_ANALYSIS_BINNEDSEMIVARIOGRAM_H
#define FENN_ANALYSIS_BINNEDSEMIVARIOGRAM_H

#include <cstddef>
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
    double modelValue = 0.0;   // mean of the model's semivariogram times the output's sample variance
    std::size_t numPairs = 0;  // never 0: bins without a pair are left out
};

/// Half the diagonal of the normalised sample box: beyond it few pairs, all from the rim of the box, are left.
double defaultMaxLag(const ModelParts& parts);

/// Empirical (Matheron) semivariogram of an output variable beside the model's, in numLags bins of equal width from lag
/// 0 to maxLag (normalised; 0 stands for defaultMaxLag), ascending. Over the unordered pairs of different points of the
/// model, wherever they lie; merged samples count as the averaged point that they became.
///
/// Source: N. Cressie, Statistics for Spatial Data (Wiley, 1993), section 2.4.
///
/// For n points n^2/2 evaluations and memory for n. Throws std::invalid_argument for an output variable that does not
/// exist, for no lags, and for a maximum lag that is not finite and above 0.
std::vector<LagBin> binnedSemivariogram(const ModelParts& parts, std::size_t outputVar, std::size_t numLags,
                                        double maxLag = 0.0);

} // namespace fenn::analysis

#endif
