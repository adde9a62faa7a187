#ifndef FENN_ANALYSIS_MODELBUILDER_H
#define FENN_ANALYSIS_MODELBUILDER_H

#include <memory>

#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"

class KrigingSurrogateModel;

namespace fenn::analysis
{

using estimation::ModelSettings;
using estimation::SampleSet;

/// The model of all samples, every output variable activated. It refers to the samples, which must outlive it.
/// Throws as checkSettings and as the constructor of KrigingSurrogateModel.
std::unique_ptr<KrigingSurrogateModel> buildModel(const SampleSet& samples, const ModelSettings& settings);

/// For who needs the parts of that model and not its estimates: normalizers, limits, data block with merged points and
/// semivariogram are those of buildModel, but nothing is factorised and no room is made for the global system.
/// Throws as buildModel, except for what only the drift order or the number of nearest points can cause.
std::unique_ptr<KrigingSurrogateModel> buildModelParts(const SampleSet& samples, const ModelSettings& settings);

} // namespace fenn::analysis

#endif
