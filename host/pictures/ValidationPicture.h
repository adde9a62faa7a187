#ifndef FENN_HOST_PICTURES_VALIDATIONPICTURE_H
#define FENN_HOST_PICTURES_VALIDATIONPICTURE_H

#include <string>
#include <vector>

#include "host/pictures/PictureOptions.h"
#include "host/reports/ValidationResult.h"

namespace krige
{

/// Four panels per output: estimates over measured values, with the line on which both are equal; errors over standard
/// errors, with the ends of the intervals that are to hold half and 95 % of them; how much intervals held over how much
/// they were to hold, with what chance allows; and errors at their places, of the first two inputs where there are
/// more, or along a single one. inputUnits: may be empty. Throws as Picture::save.
void drawValidation(const PictureOptions& options, const std::string& inputUnits, const ValidationResult& result,
                    const std::vector<ValidationFigures>& figures);

} // namespace krige

#endif
