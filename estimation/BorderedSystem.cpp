#include "estimation/BorderedSystem.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "estimation/InverseNorm.h"
#include "estimation/StripStore.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/MagnitudeGuards.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"

namespace fenn::estimation
{

namespace
{

constexpr std::size_t numNormColumns = 4;

/// The largest column sum of magnitudes of the matrix before it was factorised.
double calcNorm(const KrigingMatrix& system, const ModelParts& parts)
{
    PointColumns points;
    system.gatherCoordinates(parts.getPoints(), points);
    const std::size_t numPoints = points.getNumPts();
    std::vector<double> column(static_cast<std::size_t>(system.getDimension()));
    std::vector<double> ofBorder(column.size() - numPoints, 0.0);
    std::vector<double> target(points.getNumInputVars());
    std::vector<double> scratch(points.getNumInputVars());
    double largest = 0.0;
    for (std::size_t j = 0; j < numPoints; ++j)
    {
        for (std::size_t v = 0; v < target.size(); ++v)
            target[v] = points.getColumn(v)[j];
        system.buildRightHandSide(column.data(), target.data(), points, scratch);
        double sum = 0.0;
        for (std::size_t i = 0; i < column.size(); ++i)
            sum += i == j ? 0.0 : std::fabs(column[i]); // the diagonal is 0, the right-hand side's entry the nugget
        largest = std::max(largest, sum);
        for (std::size_t k = 0; k < ofBorder.size(); ++k)
            ofBorder[k] += std::fabs(column[numPoints + k]);
    }
    for (const double sum : ofBorder)
        largest = std::max(largest, sum);
    return largest;
}

double calcInverseNorm(const KrigingMatrix& system)
{
    const auto dimension = static_cast<std::size_t>(system.getDimension());
    InverseNorm norm(std::vector<double>(dimension, 1.0), numNormColumns);
    const StripStore store(dimension, 1);
    std::vector<double> solution(dimension);
    for (int solve = 0; solve < InverseNorm::numSolves; ++solve)
    {
        norm.writeColumns(store, 0);
        for (std::size_t c = 0; c < numNormColumns; ++c)
        {
            double* column = store.getColumn(c);
            for (std::size_t i = 0; i < dimension; ++i)
                solution[i] = column[kernels::stripWidth * i];
            system.luSolve(solution.data());
            for (std::size_t i = 0; i < dimension; ++i)
                column[kernels::stripWidth * i] = solution[i];
        }
        norm.readSolutions(store, 0);
    }
    return norm.getEstimate();
}

} // namespace

bool hasReplacedPivot(const KrigingMatrix& system)
{
    for (int i = 0; i < system.getDimension(); ++i)
    {
        if (system.getRow(i)[i] == effectivelyZero)
            return true;
    }
    return false;
}

double calcLogDeterminant(const KrigingMatrix& system)
{
    double sum = 0.0;
    for (int i = 0; i < system.getDimension(); ++i)
        sum += std::log(std::fabs(system.getRow(i)[i]));
    return sum;
}

double calcReciprocalCondition(const KrigingMatrix& system, const ModelParts& parts)
{
    if (hasReplacedPivot(system))
        return 0.0;
    try
    {
        const double condition = calcNorm(system, parts) * calcInverseNorm(system);
        return std::isnan(condition) ? 0.0 : 1.0 / condition;
    }
    catch (const SurrogateModelInterface::Error&)
    {
        return 0.0;
    }
}

std::vector<double> solveForPoints(const KrigingMatrix& system, const std::vector<double>& values)
{
    std::vector<double> column(static_cast<std::size_t>(system.getDimension()), 0.0);
    std::copy(values.begin(), values.end(), column.begin());
    system.luSolve(column.data());
    column.resize(values.size());
    return column;
}

} // namespace fenn::estimation
