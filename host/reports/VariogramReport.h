#ifndef FENN_HOST_REPORTS_VARIOGRAMREPORT_H
#define FENN_HOST_REPORTS_VARIOGRAMREPORT_H

#include <optional>
#include <string>

#include "analysis/BinnedSemivariogram.h"
#include "analysis/SemivariogramFit.h"
#include "host/model/LagUnit.h"
#include "host/model/Settings.h"

namespace krige
{

/// "pairs: 4175 pairs of 100 points, up to a lag of 181072 m", and what was left out of them.
std::string describePairs(const fenn::analysis::BinnedSemivariogram& table,
                          const fenn::analysis::BinningOptions& options, const LagUnit& unit);

/// A line for the fit, with the settings as options, and hints where it is not to be trusted. settings: with the fit.
std::string describeFit(const fenn::analysis::SphericalFit& fit, const Settings& settings,
                        const fenn::analysis::BinningOptions& options, const LagUnit& unit);

/// "rainfall", or "rainfall in direction 45 +- 22.5", for the axis of a picture.
std::string nameWithDirection(const std::string& outputName, const fenn::analysis::BinningOptions& options);

} // namespace krige

#endif
