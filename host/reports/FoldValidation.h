#ifndef FENN_HOST_REPORTS_FOLDVALIDATION_H
#define FENN_HOST_REPORTS_FOLDVALIDATION_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "estimation/chooseEstimator.h"
#include "host/model/OutputSill.h"
#include "host/model/SampleTable.h"
#include "host/model/Settings.h"
#include "host/reports/ValidationResult.h"
#include "host/text/Console.h"

namespace krige
{

/// Samples estimated in folds, each from the samples outside its fold.
struct FoldValidation
{
    ValidationResult result;                           // a point per sample, in the samples' order
    std::vector<std::vector<OutputSill>> sillsOfFolds; // per fold, per output
    std::string method;                                // "10 folds of 100 samples, seed 1"
};

/// Throws UsageError, with the way out, unless there are as many samples as the option --folds asks for.
void checkFolds(std::size_t numFolds, const SampleTable& samples, const std::string& wayOut);

/// A ValidationResult of these samples without points.
ValidationResult resultFor(const SampleTable& samples);

/// At most as many folds as there are places. samples: as they stand in the file. Throws InputError for samples at one
/// place, and as runExplained.
FoldValidation validateInFolds(const SampleTable& samples, const Settings& settings,
                               const fenn::estimation::EstimatorOptions& estimator, std::size_t numFolds,
                               std::uint64_t seed, const Console& console);

} // namespace krige

#endif
