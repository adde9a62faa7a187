#ifndef FENN_HOST_PAGE_VALIDATIONSECTION_H
#define FENN_HOST_PAGE_VALIDATIONSECTION_H

#include <string>
#include <vector>

#include "host/reports/ValidationResult.h"

namespace krige
{

/// Cross-validation: figures, estimated over measured values, where errors lie, what intervals hold, and the worst
/// samples with their lines. units: of the inputs. areLogarithms: whether the model is one of logarithms.
std::string validationSection(const ValidationResult& result, const std::vector<ValidationFigures>& figures,
                              const std::string& method, const std::string& units, bool areLogarithms);

/// One sentence per output that tells what the estimates are worth.
std::vector<std::string> sentencesOfValidation(const ValidationResult& result,
                                               const std::vector<ValidationFigures>& figures);

} // namespace krige

#endif
