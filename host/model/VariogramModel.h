#ifndef FENN_HOST_MODEL_VARIOGRAMMODEL_H
#define FENN_HOST_MODEL_VARIOGRAMMODEL_H

#include <string>

#include "analysis/BinnedSemivariogram.h"
#include "analysis/SemivariogramFit.h"
#include "estimation/SampleSet.h"
#include "host/model/OutputSill.h"
#include "host/model/Settings.h"

namespace fenn
{
class ModelParts;
}

namespace krige
{

/// The sill of the first output by which a picture of its semivariogram draws the model. Where it is to be estimated:
/// of all points where the settings say so and there are at most 2000, and beyond from 1000 points, each estimated from
/// the 32 nearest others; the sample variance where the settings make no model. parts: of these samples and settings.
OutputSill sillOfSettings(const fenn::estimation::SampleSet& samples, const fenn::ModelParts& parts,
                          const Settings& settings);

/// Fits sill, nugget and range to the binned semivariogram. path is for the message: throws InputError where the bins
/// are too few or all 0.
fenn::analysis::SphericalFit fitToBins(const fenn::ModelParts& parts, const fenn::analysis::BinningOptions& options,
                                       const std::string& path);

/// The settings with range, nugget and sill of a fit to normalised lags.
Settings withFit(const Settings& settings, const fenn::ModelParts& parts, const fenn::analysis::SphericalFit& fit);

} // namespace krige

#endif
