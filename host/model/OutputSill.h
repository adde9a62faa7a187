#ifndef FENN_HOST_MODEL_OUTPUTSILL_H
#define FENN_HOST_MODEL_OUTPUTSILL_H

#include <string>
#include <vector>

#include "analysis/OutputSill.h"
#include "host/model/SillChoice.h"

namespace krige
{

using fenn::analysis::applyChoices;
using fenn::analysis::calcOutputSills;
using fenn::analysis::OutputSill;

/// The line of a report: "15234.1 by restricted likelihood over 100 points (sample variance 13371.5)".
std::string describeSill(const OutputSill& sill);

/// Likewise of the folds of a cross-validation, each with a model of its own: "12801.2 to 15702.9, ...".
std::string describeSillsOfFolds(const std::vector<OutputSill>& sills);

/// For a settings file: estimated values as given ones, so that other runs take them as they are; "auto" for one that
/// is not above 0, as that of a constant output.
std::vector<SillChoice> choicesOf(const std::vector<OutputSill>& sills);

} // namespace krige

#endif
