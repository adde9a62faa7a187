#include "estimation/MergedSamples.h"

#include "surrogatemodel_kriging/ModelParts.h"

namespace fenn::estimation
{

MergedSamples getMergedSamples(const ModelParts& parts)
{
    MergedSamples merged;
    for (const MergedGroup& group : parts.getMergedGroups())
    {
        merged.groups.emplace_back();
        for (const SourcePointRef& sample : group) // all of block 0, which holds the samples
            merged.groups.back().push_back(static_cast<std::size_t>(sample.second));
        merged.numMerged += group.size();
    }
    merged.numPoints = parts.getPoints().size();
    return merged;
}

MergedSamples findMergedSamples(const std::vector<std::vector<double>>& inputs, double tolerance)
{
    std::vector<double*> arrays;
    for (const std::vector<double>& column : inputs)
        arrays.push_back(const_cast<double*>(column.data())); // the host contract's type; they are only read
    // Positive scale factors are never refused, and merging does not read them.
    const ModelParts parts(arrays, {}, static_cast<int>(inputs.front().size()), tolerance,
                           std::vector<double>(inputs.size(), 1.0), 1.0, 0.0);
    return getMergedSamples(parts);
}

} // namespace fenn::estimation
