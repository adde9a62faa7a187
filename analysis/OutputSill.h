#ifndef FENN_ANALYSIS_OUTPUTSILL_H
#define FENN_ANALYSIS_OUTPUTSILL_H

#include <cstddef>
#include <vector>

#include "analysis/Progress.h"
#include "analysis/Sill.h"
#include "estimation/Estimator.h"
#include "estimation/ModelSettings.h"

namespace fenn::analysis
{

/// Where the sill of an output comes from, which turns Kriging variances for a sill of 1 into its units.
struct SillChoice
{
    enum class Rule
    {
        Automatic, // restricted maximum likelihood; see docs/method.md
        Sample,    // the sample variance over the points
        Given
    };

    Rule rule = Rule::Automatic;
    double value = 0.0; // of Given: above 0, in squared units of the output
};

bool operator==(const SillChoice& a, const SillChoice& b);

/// Of choices that are none, one for all outputs or one each: the one of an output.
SillChoice chooseSill(const std::vector<SillChoice>& choices, std::size_t output);

/// The sill that the standard errors of an output take, and where it comes from.
struct OutputSill
{
    double value = 0.0; // squared units of the output
    double sampleVariance = 0.0;
    SillChoice::Rule rule = SillChoice::Rule::Automatic;
    SillMethod method = SillMethod::SampleVariance; // of Automatic
    std::size_t numUsed = 0;                        // likewise: points
};

/// What the choices make of the estimated sills, one per output, of which at least the sample variances are set.
std::vector<OutputSill> applyChoices(const std::vector<SillChoice>& choices, const std::vector<Sill>& estimated);

/// Of an estimator, for which the settings hold: no second factorisation, and nothing at all where no sill is to be
/// estimated. numThreads and progress: of the points that are left out where the estimator is local. Throws as
/// estimateSills.
std::vector<OutputSill> calcOutputSills(const estimation::Estimator& estimator, const ModelSettings& settings,
                                        const std::vector<SillChoice>& choices, int numThreads,
                                        const Progress& progress = {});

} // namespace fenn::analysis

#endif
