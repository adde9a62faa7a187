#include "estimation/LocalSystem.h"

#include <algorithm>

#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::estimation
{

LocalSystem::LocalSystem(const ModelParts& parts_, int driftOrder, int numNeighbours_)
    : parts(parts_),
      numNeighbours(numNeighbours_),
      system(parts_.getDataBlock(), numNeighbours_, &parts_.getSemivariogram(), driftOrder),
      search(&parts_.getDataBlock(), parts_.getDataBlock().getNumInputVars(), parts_.getDataBlock().getNumBlocks()),
      coords(parts_.getNormalizers().size()),
      rightHandSide(static_cast<std::size_t>(system.getDimension())),
      solution(rightHandSide.size()),
      scratch(coords.size())
{
}

bool LocalSystem::solveWithout(std::size_t p)
{
    const SourcePointRef& point = parts.getPoints()[p];
    const std::vector<double*>& inputs = parts.getDataBlock().getInputValueArraysForBlock(point.first);
    for (std::size_t v = 0; v < coords.size(); ++v)
        coords[v] = inputs[v][point.second];

    const auto numWanted = static_cast<std::size_t>(numNeighbours);
    neighbours.assign(numWanted + 1, SourcePointRef());
    neighbours.resize(static_cast<std::size_t>(search.findNearestPts(coords, numNeighbours + 1, neighbours)));
    // The point itself, unless more coincident ones than were asked for come before it.
    const auto self = std::find(neighbours.begin(), neighbours.end(), point);
    if (self != neighbours.end())
        neighbours.erase(self);
    if (neighbours.size() < numWanted)
        return false;
    neighbours.resize(numWanted);

    system.assemble(neighbours, scratch);
    system.luDecompose();
    system.buildRightHandSide(rightHandSide.data(), 0, coords, neighbours, scratch);
    solution = rightHandSide;
    system.luSolve(solution.data());
    return true;
}

double LocalSystem::estimate(std::size_t outputVar) const
{
    return system.estimate(static_cast<int>(outputVar), neighbours, solution.data());
}

double LocalSystem::getVariance() const
{
    return system.dotProduct(solution.data(), rightHandSide.data());
}

} // namespace fenn::estimation
