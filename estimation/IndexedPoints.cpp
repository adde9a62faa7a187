#include "estimation/IndexedPoints.h"

#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::estimation
{

namespace
{

PointIndex makeIndex(const ModelParts& parts)
{
    const SurrogateModelDataBlock& block = parts.getDataBlock();
    const std::vector<SourcePointRef>& points = parts.getPoints();
    std::vector<std::vector<double>> normalised(parts.getNormalizers().size());
    std::vector<const double*> coords;
    for (std::size_t v = 0; v < normalised.size(); ++v)
    {
        normalised[v].reserve(points.size());
        for (const auto& [b, p] : points)
            normalised[v].push_back(parts.getNormalizers()[v].normalize(block.getInputValueArraysForBlock(b)[v][p]));
        coords.push_back(normalised[v].data());
    }
    return PointIndex(coords, points.size());
}

} // namespace

IndexedPoints::IndexedPoints(const ModelParts& parts_)
    : parts(parts_),
      numInputVars(parts.getNormalizers().size()),
      numOutputVars(static_cast<std::size_t>(parts.getDataBlock().getNumOutputVars())),
      index(makeIndex(parts))
{
    const SurrogateModelDataBlock& block = parts.getDataBlock();
    values.reserve(index.getOrder().size() * (numInputVars + numOutputVars));
    for (const std::size_t position : index.getOrder())
    {
        const auto& [b, p] = parts.getPoints()[position];
        for (const double* inputs : block.getInputValueArraysForBlock(b))
            values.push_back(inputs[p]);
        for (const double* outputs : block.getOutputValueArraysForBlock(b))
            values.push_back(outputs[p]);
    }
}

void IndexedPoints::find(const double* target, double* normalised, PointIndex::Neighbours& nearest) const
{
    for (std::size_t v = 0; v < numInputVars; ++v)
        normalised[v] = parts.getNormalizers()[v].normalize(target[v]);
    index.find(normalised, nearest);
}

} // namespace fenn::estimation
