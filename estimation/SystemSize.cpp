#include "estimation/SystemSize.h"

#include <algorithm>
#include <thread>

#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/kernels/CholeskyKernels.h"
#include "surrogatemodel_kriging/kernels/LuKernels.h"

namespace fenn::estimation
{

int countDriftTerms(int driftOrder, std::size_t numInputVars)
{
    return numDriftTerms(driftOrder, static_cast<int>(numInputVars));
}

void checkPointsSuffice(std::size_t numPoints, std::size_t numInputVars, int driftOrder)
{
    if (numPoints <= numInputVars)
        throw SurrogateModelInterface::Error("Not enough source points for kriging.");
    if (numPoints < static_cast<std::size_t>(countDriftTerms(driftOrder, numInputVars)))
        throw SurrogateModelInterface::Error("Not enough source points to calculate drift.");
}

double calcSystemBytes(std::size_t numPoints, std::size_t numInputVars, int driftOrder)
{
    const double dimension = static_cast<double>(numPoints) + countDriftTerms(driftOrder, numInputVars) + 1.0;
    const auto numRows = static_cast<std::size_t>(dimension);
    const std::size_t workspace =
        kernels::luWorkspaceSize(numRows) + kernels::luWorkspaceSize(numRows, std::thread::hardware_concurrency());
    return sizeof(double) * (dimension * dimension + static_cast<double>(workspace));
}

double calcCovarianceBytes(std::size_t numPoints, std::size_t numInputVars, int driftOrder)
{
    const auto numDriftTerms = static_cast<std::size_t>(countDriftTerms(driftOrder, numInputVars)) + 1;
    const std::size_t numRows = kernels::roundUpToTile(numPoints) + kernels::roundUpToStrip(numDriftTerms);
    const std::size_t size = kernels::PackedTriangle::sizeFor(numRows) + kernels::choleskyWorkspaceSize(numRows);
    return sizeof(double) * static_cast<double>(size);
}

double calcFoldBytes(std::size_t numPoints, std::size_t numInputVars, int driftOrder, std::size_t numFolds,
                     std::size_t numThreads)
{
    const auto numDriftTerms = static_cast<std::size_t>(countDriftTerms(driftOrder, numInputVars)) + 1;
    const std::size_t numRows = kernels::roundUpToTile(numPoints) + kernels::roundUpToStrip(numDriftTerms);
    const std::size_t numInFold = (numPoints + numFolds - 1) / numFolds;
    const std::size_t numColumns = kernels::roundUpToStrip(numInFold);
    const std::size_t perThread = numRows * numColumns + numColumns * numColumns + numInFold * numInFold;
    return sizeof(double) * static_cast<double>(perThread) * static_cast<double>(std::min(numThreads, numFolds));
}

} // namespace fenn::estimation
