#ifndef FENN_ANALYSIS_DATASETTINGS_H
#define FENN_ANALYSIS_DATASETTINGS_H

#include <optional>
#include <vector>

#include "analysis/Anisotropy.h"
#include "analysis/OutputSill.h"
#include "analysis/OutputTransform.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"

namespace fenn::analysis
{

/// The settings of a model, and those by which it takes data in their own units and gives them back: a rotation of the
/// inputs, logarithms and limits of the outputs, sills. A plain value.
struct DataSettings : ModelSettings
{
    DataSettings() = default;

    /// The rest at its defaults: any settings of a model are settings for data.
    DataSettings(const ModelSettings& model) : ModelSettings(model) {}

    std::vector<SillChoice> sills; // per output, or one word for all; empty: automatic
    // The model is one of the inputs that it rotates and stretches; the scale factors are 1 then.
    std::optional<Anisotropy> anisotropy;
    OutputUnits units;
};

bool operator==(const DataSettings& a, const DataSettings& b);

/// The samples as the model takes them: inputs rotated and stretched, outputs replaced by their logarithms. Throws
/// std::invalid_argument for a value without a logarithm, and for a place that cannot be rotated.
SampleSet inModelForm(const SampleSet& samples, const DataSettings& settings);

} // namespace fenn::analysis

#endif
