#include "surrogatemodel_kriging/kernels/ScalarSideBySideKernels.h"

#include <utility>
#include <vector>

#include "surrogatemodel_kriging/MagnitudeGuards.h"
#include "surrogatemodel_kriging/kernels/ScalarLuKernels.h"
#include "surrogatemodel_kriging/kernels/ScalarSemivariogramKernels.h"

namespace fenn::kernels::scalar
{

namespace
{

constexpr std::size_t width = numSideBySide;

/// False where the single forms end with an error or skip zeros.
bool solveAlone(std::vector<double*>& rows, std::vector<double>& b)
{
    const std::size_t n = rows.size();
    std::vector<int> pivots(n);
    std::vector<double> scale(n);
    if (!factoriseLu(rows.data(), n, pivots.data(), scale.data()))
        return false;
    for (std::size_t i = 0; i < n; ++i)
    {
        double sum = std::exchange(b[static_cast<std::size_t>(pivots[i])], b[i]);
        if (i == 0 && sum == 0.0)
            return false;
        for (std::size_t k = 0; k < i; ++k)
            sum -= rows[i][k] * b[k];
        b[i] = sum;
    }
    for (std::size_t i = n; i-- > 0;)
    {
        double sum = b[i];
        for (std::size_t k = i + 1; k < n; ++k)
            sum -= rows[i][k] * b[k];
        b[i] = sum / rows[i][i];
        if (b[i] > effectivelyInfinite || b[i] < -effectivelyInfinite)
            return false;
    }
    return true;
}

} // namespace

void evaluateSphericalSideBySide(const SphericalModel& model, const double* points, const double* targets,
                                 std::size_t numPts, double* columns, std::size_t numRows)
{
    std::vector<const double*> source(model.numInputVars);
    std::vector<const double*> target(model.numInputVars);
    const auto evaluate = [&](std::size_t t, std::size_t j, const double* others, std::size_t numOthers, std::size_t i)
    {
        for (std::size_t v = 0; v < model.numInputVars; ++v)
        {
            source[v] = points + (v * numPts + j) * width + t;
            target[v] = others + (v * numOthers + i) * width + t;
        }
        double value = 0.0;
        scalar::evaluateSpherical(model, source.data(), 1, target.data(), 1, &value, 1);
        return value;
    };
    for (std::size_t t = 0; t < width; ++t)
    {
        for (std::size_t j = 0; j < numPts; ++j)
        {
            for (std::size_t i = 0; i < j; ++i)
            {
                const double value = evaluate(t, j, points, numPts, i);
                columns[(j * numRows + i) * width + t] = value;
                columns[(i * numRows + j) * width + t] = value;
            }
            columns[(j * numRows + j) * width + t] = 0.0;
            columns[(numRows * numRows + j) * width + t] = evaluate(t, j, targets, 1, 0);
        }
    }
}

unsigned solveSideBySide(const double* columns, std::size_t numRows, double* solutions)
{
    unsigned odd = 0;
    std::vector<double> elements(numRows * numRows);
    std::vector<double*> rows(numRows);
    std::vector<double> b(numRows);
    for (std::size_t t = 0; t < width; ++t)
    {
        for (std::size_t i = 0; i < numRows; ++i)
        {
            rows[i] = elements.data() + i * numRows;
            for (std::size_t c = 0; c < numRows; ++c)
                rows[i][c] = columns[(c * numRows + i) * width + t];
            b[i] = columns[(numRows * numRows + i) * width + t];
        }
        if (!solveAlone(rows, b))
        {
            odd |= 1U << t;
            continue;
        }
        for (std::size_t i = 0; i < numRows; ++i)
            solutions[i * width + t] = b[i];
    }
    return odd;
}

} // namespace fenn::kernels::scalar
