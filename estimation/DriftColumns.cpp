#include "estimation/DriftColumns.h"

#include <cstddef>

#include "estimation/SystemSize.h"
#include "surrogatemodel_kriging/DriftTerms.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::estimation
{

std::vector<std::vector<double>> calcDriftColumns(const ModelParts& parts, int driftOrder)
{
    const std::size_t numPoints = parts.getPoints().size();
    const std::size_t numInputVars = parts.getNormalizers().size();
    const auto numTerms = static_cast<std::size_t>(countDriftTerms(driftOrder, numInputVars));
    std::vector<std::vector<double>> columns(numTerms + 1, std::vector<double>(numPoints, 1.0));
    std::vector<double> place(numInputVars);
    std::vector<double> scratch(numInputVars);
    std::vector<double> terms(numTerms);
    for (std::size_t i = 0; numTerms > 0 && i < numPoints; ++i)
    {
        const auto& [block, point] = parts.getPoints()[i];
        for (std::size_t v = 0; v < numInputVars; ++v)
            place[v] = parts.getDataBlock().getInputValueArraysForBlock(block)[v][point];
        writeDriftTerms<1>(terms.data(), driftOrder, place.data(), parts.getNormalizers(),
                           static_cast<int>(numInputVars), scratch.data());
        for (std::size_t k = 0; k < numTerms; ++k)
            columns[k][i] = terms[k];
    }
    return columns;
}

} // namespace fenn::estimation
