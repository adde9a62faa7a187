#include "surrogatemodel_kriging/NPtsKrigingController.h"

#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

NPtsKrigingController::NPtsKrigingController(const SurrogateModelDataBlock* dataBlock_,
                                             SemivariogramInterface* semivariogram, int driftOrder, int numNeighbours_)
    : KrigingControllerAbstract(dataBlock_),
      numNeighbours(numNeighbours_),
      krigingMatrix(*dataBlock_, numNeighbours_, semivariogram, driftOrder),
      neighbourSearch(dataBlock_, dataBlock_->getNumInputVars(), dataBlock_->getNumBlocks())
{
}

NPtsKrigingController::~NPtsKrigingController() = default;

void NPtsKrigingController::interpolate(const std::vector<double*>& targetCoords, const std::set<int>& outputVars,
                                        int numTargets, std::vector<double*>& values, std::vector<double*>& variances)
{
    interpolateWithDrift(targetCoords, outputVars, numTargets, values, variances, nullptr);
}

void NPtsKrigingController::interpolateWithDrift(const std::vector<double*>& targetCoords,
                                                 const std::set<int>& outputVars, int numTargets,
                                                 std::vector<double*>& values, std::vector<double*>& variances,
                                                 double* driftProducts)
{
    const bool wantsCopy = !variances.empty() || driftProducts != nullptr;
    const auto dimension = static_cast<std::size_t>(krigingMatrix.getDimension());
    const auto numInputVars = static_cast<std::size_t>(dataBlock->getNumInputVars());
    std::vector<double> rhs(dimension);
    std::vector<double> rhsCopy(wantsCopy ? dimension : 0);
    // A search may fill fewer entries. The others keep the points of the target before, or the first point, and are
    // used.
    std::vector<SourcePointRef> neighbours(static_cast<std::size_t>(numNeighbours));
    std::vector<double> coords(numInputVars);
    std::vector<double> scratch(numInputVars);

    for (int t = 0; t < numTargets; ++t)
    {
        for (std::size_t v = 0; v < numInputVars; ++v)
            coords[v] = targetCoords[v][t];
        neighbourSearch.findNearestPts(coords, numNeighbours, neighbours);
        krigingMatrix.assemble(neighbours, scratch);
        krigingMatrix.luDecompose();
        krigingMatrix.buildRightHandSide(rhs.data(), coords.data(), krigingMatrix.getAssembledPts(), scratch);
        if (wantsCopy)
            rhsCopy = rhs;
        krigingMatrix.luSolve(rhs.data());

        std::size_t k = 0;
        for (const int outputVar : outputVars)
        {
            const double reference = getOutputNormalizer(outputVar).getOffset();
            values[k][t] = krigingMatrix.estimateCentered(outputVar, reference, neighbours, rhs.data());
            if (!variances.empty())
                variances[k][t] = krigingMatrix.dotProduct(rhs.data(), rhsCopy.data());
            ++k;
        }
        if (driftProducts != nullptr)
            driftProducts[t] = krigingMatrix.calcDriftProduct(rhs.data(), rhsCopy.data());
    }
}
