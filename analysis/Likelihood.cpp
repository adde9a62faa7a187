#include "analysis/Likelihood.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

#include "analysis/ModelPoints.h"
#include "analysis/Sill.h"
#include "analysis/Trend.h"
#include "estimation/DriftColumns.h"
#include "estimation/makeModelParts.h"
#include "estimation/makeSystemInverse.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::analysis
{

namespace
{

// Of the sample variance: a drift that meets all values leaves errors of 1e-16 to 1e-13 standard deviations.
constexpr double smallestSill = 1e-24;

RestrictedLikelihood failedBecause(const char* reason)
{
    RestrictedLikelihood likelihood;
    likelihood.failure = reason;
    return likelihood;
}

} // namespace

double RestrictedLikelihood::calcSum() const
{
    if (!failure.empty())
        return std::numeric_limits<double>::infinity();
    return std::accumulate(deviances.begin(), deviances.end(), 0.0);
}

RestrictedLikelihood calcRestrictedLikelihood(const ModelParts& parts, const estimation::SystemInverse& system,
                                              int driftOrder)
{
    const std::vector<std::vector<double>> driftColumns = estimation::calcDriftColumns(parts, driftOrder);
    const std::size_t numPoints = system.getNumPoints();
    if (numPoints <= driftColumns.size())
        return failedBecause("No more points than terms of the drift");
    if (!system.isWellConditioned())
        return failedBecause("Points cannot be told apart");

    const auto numFree = static_cast<double>(numPoints - driftColumns.size());
    const Trend trend(driftColumns);
    const double ofTheSystem = system.calcLogDeterminant() - trend.getLogGramDeterminant();
    RestrictedLikelihood likelihood;
    for (int w = 0; w < parts.getDataBlock().getNumOutputVars(); ++w)
    {
        const auto output = static_cast<std::size_t>(w);
        std::vector<double> values = outputOfPoints(parts, output);
        const auto [least, greatest] = std::minmax_element(values.begin(), values.end());
        if (*least == *greatest)
        {
            likelihood.deviances.push_back(0.0);
            likelihood.sills.push_back(0.0);
            continue;
        }
        values = trend.removeFrom(centred(std::move(values), parts.getDataBlock(), output));
        const double smallest = smallestSill * varianceOfPoints(parts, output);
        std::vector<double> dualWeights = system.solve(values); // of the semivariogram form, which has the other sign
        for (double& weight : dualWeights)
            weight = -weight;
        const double sill = restrictedSill(values, dualWeights, driftColumns.size());
        if (!(sill > -smallest))
            return failedBecause("The semivariogram is not valid for these inputs");
        likelihood.sills.push_back(std::max(sill, smallest));
        likelihood.deviances.push_back(numFree * std::log(likelihood.sills.back()) + ofTheSystem);
    }
    return likelihood;
}

RestrictedLikelihood calcRestrictedLikelihood(const SampleSet& samples, const ModelSettings& settings)
{
    const auto parts = estimation::makeModelParts(samples, settings);
    return calcRestrictedLikelihood(*parts, *estimation::makeSystemInverse(*parts, settings.driftOrder, {}),
                                    settings.driftOrder);
}

} // namespace fenn::analysis
