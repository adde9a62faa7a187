#include "analysis/Calibration.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "analysis/NormalDistribution.h"

namespace fenn::analysis
{

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

// Of a certain point's error, relative to the truth.
constexpr double largestRounding = 1e-12;

constexpr double oneOverRootOfPi = 0.56418958354775628;

double meanOf(double sum, std::size_t count)
{
    return count == 0 ? notANumber : sum / static_cast<double>(count);
}

double crpsOf(double error, double standardError)
{
    if (standardError == 0.0)
        return std::fabs(error);
    const double x = error / standardError;
    return standardError * (x * (2.0 * normalProbability(x) - 1.0) + 2.0 * normalDensity(x) - oneOverRootOfPi);
}

/// Calls use(error, standard error, |error| / standard error) for each used point and counts the others. The quotient
/// of a certain point is 0 or infinite.
template <typename Use>
void forEachUsed(const std::vector<double>& truths, const std::vector<double>& estimates,
                 const std::vector<double>& standardErrors, Calibration& counts, const Use& use)
{
    if (estimates.size() != truths.size() || standardErrors.size() != truths.size())
        throw std::invalid_argument("truths, estimates and standard errors must be of equal number");
    for (std::size_t i = 0; i < truths.size(); ++i)
    {
        if (std::isnan(estimates[i]))
        {
            ++counts.numMissing;
            continue;
        }
        if (std::isnan(standardErrors[i]))
        {
            ++counts.numWithoutStandardError;
            continue;
        }
        ++counts.numUsed;
        const double error = estimates[i] - truths[i];
        if (standardErrors[i] > 0.0)
        {
            use(error, standardErrors[i], std::fabs(error) / standardErrors[i]);
            continue;
        }
        ++counts.numCertain;
        use(error, 0.0, std::fabs(error) <= largestRounding * std::fabs(truths[i]) ? 0.0 : infinity);
    }
}

IntervalCoverage coverageOf(const std::vector<double>& ascendingQuotients, double nominal)
{
    const double factor = intervalFactor(nominal);
    const auto end = std::upper_bound(ascendingQuotients.begin(), ascendingQuotients.end(), factor);
    return {nominal, meanOf(static_cast<double>(end - ascendingQuotients.begin()), ascendingQuotients.size())};
}

} // namespace

Calibration calcCalibration(const std::vector<double>& truths, const std::vector<double>& estimates,
                            const std::vector<double>& standardErrors)
{
    Calibration calibration;
    double sumSquared = 0.0;
    double sumScores = 0.0;
    std::vector<double> quotients;
    forEachUsed(truths, estimates, standardErrors, calibration,
                [&](double error, double standardError, double quotient)
                {
                    if (standardError > 0.0)
                        sumSquared += quotient * quotient;
                    sumScores += crpsOf(error, standardError);
                    quotients.push_back(quotient);
                });
    calibration.meanSquaredStandardisedError = meanOf(sumSquared, calibration.numUsed - calibration.numCertain);
    calibration.crps = meanOf(sumScores, calibration.numUsed);
    std::sort(quotients.begin(), quotients.end());
    for (const double nominal : {0.5, 0.9, 0.95})
        calibration.coverages.push_back(coverageOf(quotients, nominal));
    return calibration;
}

std::vector<IntervalCoverage> calcCalibrationCurve(const std::vector<double>& truths,
                                                   const std::vector<double>& estimates,
                                                   const std::vector<double>& standardErrors, std::size_t numIntervals)
{
    std::vector<double> quotients;
    Calibration counts;
    forEachUsed(truths, estimates, standardErrors, counts,
                [&](double /*error*/, double /*standardError*/, double quotient) { quotients.push_back(quotient); });
    std::sort(quotients.begin(), quotients.end());
    std::vector<IntervalCoverage> curve;
    for (std::size_t k = 1; k <= numIntervals; ++k)
        curve.push_back(coverageOf(quotients, static_cast<double>(k) / static_cast<double>(numIntervals + 1)));
    return curve;
}

} // namespace fenn::analysis
