#include "estimation/GlobalSystem.h"

#include <algorithm>

#include "estimation/ThreadCount.h"
#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::estimation
{

GlobalSystem::GlobalSystem(const ModelParts& parts, int driftOrder, int numThreads)
    : controller(std::make_unique<AllPtsKrigingController>(&parts.getDataBlock(), &parts.getSemivariogram(), driftOrder,
                                                           chooseThreadCount(numThreads))),
      numPoints(parts.getPoints().size())
{
}

GlobalSystem::~GlobalSystem() = default;

std::size_t GlobalSystem::getNumPoints() const
{
    return numPoints;
}

std::vector<double> GlobalSystem::solve(const std::vector<double>& values) const
{
    const KrigingMatrix& system = controller->getSystem();
    std::vector<double> column(static_cast<std::size_t>(system.getDimension()), 0.0);
    std::copy(values.begin(), values.end(), column.begin());
    system.luSolve(column.data());
    return column;
}

std::vector<double> GlobalSystem::calcInverseDiagonal(const std::function<void(std::size_t numDone)>& afterEach) const
{
    const KrigingMatrix& system = controller->getSystem();
    std::vector<double> diagonal(numPoints);
    std::vector<double> column(static_cast<std::size_t>(system.getDimension()));
    for (std::size_t i = 0; i < numPoints; ++i)
    {
        std::fill(column.begin(), column.end(), 0.0);
        column[i] = 1.0;
        system.luSolve(column.data());
        diagonal[i] = column[i];
        afterEach(i + 1);
    }
    return diagonal;
}

} // namespace fenn::estimation
