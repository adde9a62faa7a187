#include "tests/accuracy/SystemFigures.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/accuracy/HighPrecisionSystem.h"
#include "tests/support/MatrixSamples.h"
#include "tests/support/ThrownError.h"

namespace fenn::test
{

namespace
{

HighVector productOf(const HighRows& rows, const HighVector& x)
{
    HighVector product(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        for (std::size_t k = 0; k < rows.size(); ++k)
            product[i].addProduct(rows[i][k], x[k]);
    }
    return product;
}

HighPrecision weightedSum(const HighVector& weights, const std::vector<double>& outputs)
{
    HighPrecision sum;
    for (std::size_t i = 0; i < outputs.size(); ++i)
        sum.addProduct(weights[i], outputs[i]);
    return sum;
}

/// A NaN is the worst of all.
void keepWorst(double& worst, double figure)
{
    worst = figure <= worst ? worst : figure;
}

/// One right-hand side: what luSolve makes of it, and the figures that follow from the exact solution.
void measureTarget(const KrigingMatrix& matrix, const std::vector<SourcePointRef>& points,
                   const NaiveLinearSystem::Rows& original, const HighPrecisionSystem& exact,
                   const std::vector<double>& outputs, const std::vector<double>& b, SystemFigures& figures)
{
    std::vector<double> x = b;
    const std::string failure = textOfError([&] { matrix.luSolve(x.data()); });
    if (failure == "Value overflow")
    {
        ++figures.numOverflows;
        return;
    }
    if (failure != "no Error")
        throw std::logic_error(failure); // the factorisation leaves no diagonal for any other
    const double estimate = matrix.estimate(0, points, x.data());
    if (!std::isfinite(estimate))
    {
        ++figures.numNotANumber;
        return;
    }
    keepWorst(figures.solveRatio, calcSolveRatio(original, b, x));
    if (exact.isSingular())
        return;

    HighVector solution = exact.solve(toHighPrecision(b));
    HighPrecision error = weightedSum(solution, outputs);
    error -= estimate;
    keepWorst(figures.estimateError, std::fabs(error.toDouble()) / largestMagnitude(outputs));
    const double norm = oneNorm(solution).toDouble();
    for (std::size_t i = 0; i < x.size(); ++i)
        solution[i] -= x[i];
    keepWorst(figures.weightError, oneNorm(solution).toDouble() / (figures.condition * norm * relativeMachineEpsilon));
}

} // namespace

double calcFactorRatio(const NaiveLinearSystem::Rows& original, const Matrix& factorised)
{
    const std::size_t n = original.size();
    const NaiveLinearSystem factors = factorsOf(factorised);
    const HighRows highFactors = toHighPrecision(factors.rows);
    HighRows residual = toHighPrecision(original);
    const HighPrecision norm = oneNorm(residual);
    for (std::size_t j = 0; j < n; ++j)
        residual[j].swap(residual[static_cast<std::size_t>(factors.pivots[j])]);
    for (std::size_t i = 0; i < n; ++i)
    {
        for (std::size_t k = 0; k < n; ++k)
        {
            HighPrecision product; // row i of L times column k of U; L has a unit diagonal
            for (std::size_t m = 0; m < std::min(i, k + 1); ++m)
                product.addProduct(highFactors[i][m], highFactors[m][k]);
            if (i <= k)
                product += highFactors[i][k];
            residual[i][k] -= product;
        }
    }
    HighPrecision ratio = oneNorm(residual);
    ratio /= norm;
    return ratio.toDouble() / (static_cast<double>(n) * relativeMachineEpsilon);
}

double calcSolveRatio(const NaiveLinearSystem::Rows& original, const std::vector<double>& b,
                      const std::vector<double>& x)
{
    const HighRows rows = toHighPrecision(original);
    const HighVector solution = toHighPrecision(x);
    HighVector residual = productOf(rows, solution);
    for (std::size_t i = 0; i < b.size(); ++i)
        residual[i] -= b[i];
    HighPrecision ratio = oneNorm(residual);
    ratio /= oneNorm(rows);
    ratio /= oneNorm(solution);
    return ratio.toDouble() / relativeMachineEpsilon;
}

SystemFigures measure(const HardSystem& system)
{
    ModelSample sample(system.inputs, {system.outputs});
    const ModelParts parts = sample.makeParts(system.settings);
    const SurrogateModelDataBlock& block = parts.getDataBlock();
    const std::vector<SourcePointRef>& points = parts.getPoints();
    std::vector<double> scratch(system.inputs.size());
    KrigingMatrix matrix(block, sample.numPts, &parts.getSemivariogram(), system.settings.driftOrder);
    matrix.assemble(points, scratch);

    SystemFigures figures;
    figures.dimension = matrix.getDimension();
    const NaiveLinearSystem::Rows original = rowsOf(matrix);
    try
    {
        matrix.luDecompose();
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        figures.failure = error.what();
        return figures;
    }

    const HighPrecisionSystem exact(original);
    figures.condition = exact.calcCondition();
    figures.factorRatio = calcFactorRatio(original, matrix);
    for (std::size_t t = 0; t < numHardTargets; ++t)
    {
        std::vector<double> b(original.size());
        matrix.buildRightHandSide(b.data(), 0, pointAt(system.targets, t), points, scratch);
        measureTarget(matrix, points, original, exact, system.outputs, b, figures);
    }
    return figures;
}

} // namespace fenn::test
