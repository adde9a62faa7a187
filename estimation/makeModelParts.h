#ifndef FENN_ESTIMATION_MAKEMODELPARTS_H
#define FENN_ESTIMATION_MAKEMODELPARTS_H

#include <memory>

#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"

namespace fenn
{
class ModelParts;
}

namespace fenn::estimation
{

/// Normalizers, limits, points after merging and semivariogram of the model of these samples: no system is allocated or
/// factorised. The parts refer to the samples, which must outlive them.
///
/// Throws as checkSettings, the library's Error for scale factors and ranges that it refuses, and std::bad_alloc.
std::shared_ptr<const ModelParts> makeModelParts(const SampleSet& samples, const ModelSettings& settings);

} // namespace fenn::estimation

#endif
