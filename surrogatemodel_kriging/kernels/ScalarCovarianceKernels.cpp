#include "surrogatemodel_kriging/kernels/ScalarCovarianceKernels.h"

#include <algorithm>

#include "surrogatemodel_kriging/kernels/ErrorFree.h"
#include "surrogatemodel_kriging/kernels/ScalarSemivariogramKernels.h"

namespace fenn::kernels::scalar
{

namespace
{

double gammaOf(const SphericalModel& model, const BoxedPoints& points, std::size_t j, const double* targets,
               std::size_t t)
{
    double lagSquared = 0.0;
    for (std::size_t v = 0; v < model.numInputVars; ++v)
    {
        const double difference = (points.coordinates[v][j] - targets[stripWidth * v + t]) * model.scales[v];
        lagSquared += difference * difference;
    }
    return valueAtLag(model, lagSquared);
}

/// One target's sum; covariance(j) gives those of the points.
template <class Covariance>
double sumOf(std::size_t numPts, const double* weights, const Covariance& covariance)
{
    double sum = 0.0;
    double errors = 0.0;
    for (std::size_t begin = 0; begin < numPts; begin += pointsPerTerm)
    {
        double p[pointsPerTerm];
        for (std::size_t i = 0; i < pointsPerTerm; ++i)
            p[i] = begin + i < numPts ? weights[begin + i] * covariance(begin + i) : 0.0;
        const WithError next = addWithError(sum, ((p[0] + p[1]) + (p[2] + p[3])) + ((p[4] + p[5]) + (p[6] + p[7])));
        sum = next.value;
        errors += next.error;
    }
    return sum + errors;
}

} // namespace

void evaluateCovariances(const SphericalModel& model, const BoxedPoints& points, std::size_t begin, std::size_t end,
                         const double* targets, double* lines)
{
    for (std::size_t j = begin; j < end; ++j)
    {
        for (std::size_t t = 0; t < stripWidth; ++t)
            lines[stripWidth * j + t] = 1.0 - gammaOf(model, points, j, targets, t);
    }
}

void sumCovariances(const SphericalModel& model, const BoxedPoints& points, const double* targets,
                    const PointWeights& weights, double* sums)
{
    for (std::size_t o = 0; o < weights.numOutputs; ++o)
    {
        for (std::size_t t = 0; t < stripWidth; ++t)
            sums[stripWidth * o + t] =
                sumOf(points.numPts, weights.values + o * weights.stride,
                      [&](std::size_t j) { return 1.0 - gammaOf(model, points, j, targets, t); });
    }
}

void sumLines(const double* lines, std::size_t numPts, const PointWeights& weights, double* sums)
{
    for (std::size_t o = 0; o < weights.numOutputs; ++o)
    {
        for (std::size_t t = 0; t < stripWidth; ++t)
            sums[stripWidth * o + t] = sumOf(numPts, weights.values + o * weights.stride,
                                             [&](std::size_t j) { return lines[stripWidth * j + t]; });
    }
}

void subtractCovariancesTwice(const SphericalModel& model, const BoxedPoints& points, std::size_t firstTarget,
                              const double* targets, const PointWeights& weights, const DoubledSums& sums)
{
    for (std::size_t o = 0; o < weights.numOutputs; ++o)
    {
        for (std::size_t t = 0; t < stripWidth; ++t)
        {
            double& high = sums.high[stripWidth * o + t];
            double& low = sums.low[stripWidth * o + t];
            for (std::size_t j = 0; j < points.numPts; ++j)
            {
                const double weight = weights.values[o * weights.stride + j];
                const double gamma = j == firstTarget + t ? 0.0 : gammaOf(model, points, j, targets, t);
                const double c = 1.0 - gamma;
                const double cError = (1.0 - c) - gamma;
                const WithError product = multiplyWithError(weight, c);
                const WithError difference = subtractWithError(high, product.value);
                high = difference.value;
                low += (difference.error - product.error) - weight * cError;
            }
        }
    }
}

} // namespace fenn::kernels::scalar
