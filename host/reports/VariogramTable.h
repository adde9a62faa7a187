#ifndef FENN_HOST_REPORTS_VARIOGRAMTABLE_H
#define FENN_HOST_REPORTS_VARIOGRAMTABLE_H

#include <string>
#include <vector>

#include "analysis/BinnedSemivariogram.h"
#include "host/model/LagUnit.h"

namespace krige
{

/// CSV text with a header row and a line for every bin or lag, the lags in this unit.
std::string csvOfBins(const std::vector<fenn::analysis::LagBin>& bins, const LagUnit& unit);

} // namespace krige

#endif
