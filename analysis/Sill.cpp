#include "analysis/Sill.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "analysis/Folds.h"
#include "analysis/ModelPoints.h"
#include "analysis/Trend.h"
#include "estimation/DriftColumns.h"
#include "estimation/Estimator.h"
#include "estimation/LocalEstimator.h"
#include "estimation/SystemInverse.h"
#include "estimation/SystemSize.h"
#include "estimation/chooseEstimator.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::analysis
{

namespace
{

constexpr std::size_t maxLeftOut = 1000;
constexpr std::uint64_t choiceSeed = 1;

// A variance below is a repeated point's or a rounding error, and would carry the whole mean.
constexpr double smallestVariance = 1e-12;

std::size_t countOutputVars(const ModelParts& parts)
{
    return static_cast<std::size_t>(parts.getDataBlock().getNumOutputVars());
}

Sill sampleVarianceOf(const ModelParts& parts, std::size_t outputVar)
{
    const double variance = varianceOfPoints(parts, outputVar);
    return {variance, variance, SillMethod::SampleVariance, parts.getPoints().size()};
}

/// False for a point whose neighbours have no solution.
bool canEstimateWithout(const estimation::LocalEstimator& estimator, std::size_t point,
                        const estimation::Results& where)
{
    try
    {
        estimator.estimateWithoutEach(point, 1, where);
        return true;
    }
    catch (const SurrogateModelInterface::Error&)
    {
        return false;
    }
}

/// Ascending.
std::vector<std::size_t> choosePoints(std::size_t numPoints)
{
    std::vector<std::size_t> chosen = shuffledIndices(numPoints, choiceSeed);
    chosen.resize(std::min(numPoints, maxLeftOut));
    std::sort(chosen.begin(), chosen.end());
    return chosen;
}

} // namespace

double restrictedSill(const std::vector<double>& values, const std::vector<double>& dualWeights,
                      std::size_t numDriftColumns)
{
    const double sum = std::inner_product(values.begin(), values.end(), dualWeights.begin(), 0.0);
    return sum / (static_cast<double>(values.size()) - static_cast<double>(numDriftColumns));
}

std::vector<Sill> restrictedSills(const ModelParts& parts, const std::vector<std::vector<double>>& dualWeights,
                                  int driftOrder)
{
    const std::size_t numPoints = parts.getPoints().size();
    const std::size_t numDriftColumns =
        static_cast<std::size_t>(estimation::countDriftTerms(driftOrder, parts.getNormalizers().size())) + 1;
    const Trend trend(estimation::calcDriftColumns(parts, driftOrder));
    std::vector<Sill> sills;
    for (std::size_t w = 0; w < countOutputVars(parts); ++w)
    {
        sills.push_back(sampleVarianceOf(parts, w));
        if (dualWeights.empty() || numPoints <= numDriftColumns)
            continue;
        // Dual weights do not see the trend, but its rounding would be seen beside a small sill.
        const std::vector<double> values = trend.removeFrom(centred(outputOfPoints(parts, w), parts.getDataBlock(), w));
        const double value = restrictedSill(values, dualWeights[w], numDriftColumns);
        if (value >= 0.0 && std::isfinite(value))
            sills.back() = {value, sills.back().sampleVariance, SillMethod::RestrictedLikelihood, numPoints};
    }
    return sills;
}

std::vector<Sill> leaveOneOutSills(const estimation::LocalEstimator& estimator, const Progress& progress)
{
    const ModelParts& parts = estimator.getParts();
    const std::size_t numPoints = parts.getPoints().size();
    std::vector<std::vector<double>> truths;
    std::vector<std::vector<double>> estimates(countOutputVars(parts), std::vector<double>(numPoints));
    std::vector<double> variances(numPoints);
    estimation::Results where;
    for (std::size_t w = 0; w < estimates.size(); ++w)
    {
        truths.push_back(outputOfPoints(parts, w));
        where.estimates.push_back(estimates[w].data());
    }
    where.variances = variances.data();

    const std::vector<std::size_t> chosen = choosePoints(numPoints);
    std::vector<double> sums(estimates.size(), 0.0);
    std::size_t numUsed = 0;
    for (std::size_t k = 0; k < chosen.size(); ++k)
    {
        const std::size_t p = chosen[k];
        if (canEstimateWithout(estimator, p, where) && variances[p] > smallestVariance)
        {
            ++numUsed;
            for (std::size_t w = 0; w < sums.size(); ++w)
                sums[w] += (estimates[w][p] - truths[w][p]) * (estimates[w][p] - truths[w][p]) / variances[p];
        }
        report(progress, k + 1, chosen.size());
    }

    std::vector<Sill> sills;
    for (std::size_t w = 0; w < sums.size(); ++w)
    {
        sills.push_back(sampleVarianceOf(parts, w));
        const double value = sums[w] / static_cast<double>(numUsed);
        if (numUsed > 0 && std::isfinite(value))
            sills.back() = {value, sills.back().sampleVariance, SillMethod::LeaveOneOut, numUsed};
    }
    return sills;
}

std::vector<Sill> estimateSills(const estimation::Estimator& estimator, const ModelSettings& settings, int numThreads,
                                const Progress& progress)
{
    const ModelParts& parts = estimator.getParts();
    if (!estimator.isGlobal())
        return leaveOneOutSills(estimation::LocalEstimator(estimator.shareParts(), settings.driftOrder,
                                                           settings.numNearestPoints, numThreads),
                                progress);
    if (!(estimator.calcReciprocalCondition() >= estimation::smallestReciprocalCondition))
        return restrictedSills(parts, {}, settings.driftOrder);
    return restrictedSills(parts, estimator.calcDualWeights(), settings.driftOrder);
}

std::vector<Sill> estimateSills(const SampleSet& samples, const ModelSettings& settings, const Progress& progress)
{
    return estimateSills(*estimation::chooseEstimator(samples, settings), settings, 0, progress);
}

} // namespace fenn::analysis
