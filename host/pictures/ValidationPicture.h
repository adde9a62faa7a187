#ifndef FENN_HOST_PICTURES_VALIDATIONPICTURE_H
#define FENN_HOST_PICTURES_VALIDATIONPICTURE_H

#include <string>
#include <vector>

#include "host/reports/ValidationResult.h"

namespace krige
{

/// Estimates over measured values, a panel per output, with the line on which both are equal. Throws as Picture::save.
void drawValidation(const std::string& path, const ValidationResult& result,
                    const std::vector<fenn::analysis::ErrorStatistics>& statistics);

} // namespace krige

#endif
