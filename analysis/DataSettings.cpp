#include "analysis/DataSettings.h"

#include <utility>

namespace fenn::analysis
{

bool operator==(const DataSettings& a, const DataSettings& b)
{
    return static_cast<const ModelSettings&>(a) == static_cast<const ModelSettings&>(b) && a.sills == b.sills &&
           a.anisotropy == b.anisotropy && a.units == b.units;
}

SampleSet inModelForm(const SampleSet& samples, const DataSettings& settings)
{
    SampleSet formed = settings.anisotropy ? settings.anisotropy->apply(samples) : samples;
    if (!settings.units.areLogarithms)
        return formed;
    std::vector<std::vector<double>> inputs;
    for (std::size_t v = 0; v < formed.getNumInputVars(); ++v)
        inputs.push_back(formed.getInput(v));
    std::vector<std::vector<double>> logarithms;
    for (std::size_t w = 0; w < formed.getNumOutputVars(); ++w)
        logarithms.push_back(toLogarithms(formed.getOutput(w)));
    return {std::move(inputs), std::move(logarithms), formed.getIncludeFlags()};
}

} // namespace fenn::analysis
