#ifndef FENN_HOST_PICTURES_VALIDATIONPICTURE_H
#define FENN_HOST_PICTURES_VALIDATIONPICTURE_H

#include <string>
#include <vector>

#include "host/reports/ValidationResult.h"

namespace krige
{

/// Three panels per output in a row: estimates over measured values, with the line on which both are equal; errors over
/// standard errors, with the ends of the intervals that are to hold half and 95 % of them; and how much intervals held
/// over how much they were to hold, with what chance allows. Throws as Picture::save.
void drawValidation(const std::string& path, const ValidationResult& result,
                    const std::vector<ValidationFigures>& figures);

} // namespace krige

#endif
