#include "analysis/ErrorStatistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace fenn::analysis
{

namespace
{

/// NaN, 0 / 0, for no points.
double meanOf(double sum, std::size_t count)
{
    return count == 0 ? std::numeric_limits<double>::quiet_NaN() : sum / static_cast<double>(count);
}

} // namespace

ErrorStatistics calcErrorStatistics(const std::vector<double>& truths, const std::vector<double>& estimates,
                                    const std::vector<double>& variances, double outputVariance, std::size_t numWorst)
{
    if (estimates.size() != truths.size() || (!variances.empty() && variances.size() != truths.size()))
        throw std::invalid_argument("truths, estimates and variances must be of equal number");

    ErrorStatistics statistics;
    std::vector<std::size_t> compared;
    double sumTruth = 0.0;
    for (std::size_t i = 0; i < truths.size(); ++i)
    {
        if (std::isnan(estimates[i]))
            continue;
        compared.push_back(i);
        sumTruth += truths[i];
    }
    statistics.numCompared = compared.size();
    statistics.numMissing = truths.size() - compared.size();
    const double meanTruth = meanOf(sumTruth, compared.size());

    double sumError = 0.0;
    double sumMagnitude = 0.0;
    double sumSquared = 0.0;
    double sumTruthSquared = 0.0;
    double sumStandardised = 0.0;
    std::size_t numStandardised = 0;
    for (const std::size_t i : compared)
    {
        const double error = estimates[i] - truths[i];
        sumError += error;
        sumMagnitude += std::fabs(error);
        sumSquared += error * error;
        sumTruthSquared += (truths[i] - meanTruth) * (truths[i] - meanTruth);
        if (variances.empty())
            continue;
        const double expectedSquare = variances[i] * outputVariance;
        if (expectedSquare > 0.0)
        {
            sumStandardised += error * error / expectedSquare;
            ++numStandardised;
        }
    }
    statistics.rmse = std::sqrt(meanOf(sumSquared, compared.size()));
    statistics.mae = meanOf(sumMagnitude, compared.size());
    statistics.bias = meanOf(sumError, compared.size());
    statistics.r2 = sumTruthSquared > 0.0 ? 1.0 - sumSquared / sumTruthSquared : meanOf(0.0, 0);
    statistics.meanSquaredStandardisedError = meanOf(sumStandardised, numStandardised);
    statistics.numWithoutVariance = compared.size() - numStandardised;

    std::stable_sort(compared.begin(), compared.end(),
                     [&](std::size_t a, std::size_t b)
                     { return std::fabs(estimates[a] - truths[a]) > std::fabs(estimates[b] - truths[b]); });
    statistics.worstError = compared.empty() ? meanOf(0.0, 0) : estimates[compared[0]] - truths[compared[0]];
    compared.resize(std::min(compared.size(), numWorst));
    statistics.worstPoints = compared;
    return statistics;
}

} // namespace fenn::analysis
