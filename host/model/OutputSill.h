#ifndef FENN_HOST_MODEL_OUTPUTSILL_H
#define FENN_HOST_MODEL_OUTPUTSILL_H

#include <cstddef>
#include <string>
#include <vector>

#include "analysis/Progress.h"
#include "analysis/Sill.h"
#include "estimation/Estimator.h"
#include "estimation/ModelSettings.h"
#include "host/model/SillChoice.h"

namespace krige
{

/// The sill that the standard errors of an output take, and where it comes from.
struct OutputSill
{
    double value = 0.0; // squared units of the output
    double sampleVariance = 0.0;
    SillChoice::Rule rule = SillChoice::Rule::Automatic;
    fenn::analysis::SillMethod method = fenn::analysis::SillMethod::SampleVariance; // of Automatic
    std::size_t numUsed = 0;                                                        // likewise: points
};

/// What the choices make of the estimated sills, one per output, of which at least the sample variances are set.
std::vector<OutputSill> applyChoices(const std::vector<SillChoice>& choices,
                                     const std::vector<fenn::analysis::Sill>& estimated);

/// Of an estimator, for which the settings hold: no second factorisation, and nothing at all where no sill is to be
/// estimated. numThreads and progress: of the points that are left out where the estimator is local. Throws as
/// fenn::analysis::estimateSills.
std::vector<OutputSill> calcOutputSills(const fenn::estimation::Estimator& estimator,
                                        const fenn::estimation::ModelSettings& settings,
                                        const std::vector<SillChoice>& choices, int numThreads,
                                        const fenn::analysis::Progress& progress = {});

/// The line of a report: "15234.1 by restricted likelihood over 100 points (sample variance 13371.5)".
std::string describeSill(const OutputSill& sill);

/// Likewise of the folds of a cross-validation, each with a model of its own: "12801.2 to 15702.9, ...".
std::string describeSillsOfFolds(const std::vector<OutputSill>& sills);

/// For a settings file: estimated values as given ones, so that other runs take them as they are; "auto" for one that
/// is not above 0, as that of a constant output.
std::vector<SillChoice> choicesOf(const std::vector<OutputSill>& sills);

} // namespace krige

#endif
