#include "estimation/Separation.h"

#include <algorithm>
#include <vector>

#include "estimation/ClosestPair.h"
#include "estimation/MergedSamples.h"
#include "estimation/SystemInverse.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::estimation
{

namespace
{

// Some near points together, and the drift, make the condition worse than a single pair does, but seldom by more.
constexpr double largestConditionOfBlamedPair = 1e-11;

std::size_t firstSampleOf(const ModelParts& parts, std::size_t point)
{
    const auto& [block, index] = parts.getPoints()[point];
    const auto i = static_cast<std::size_t>(index);
    return block == 0 ? i : getMergedSamples(parts).groups[i][0];
}

} // namespace

Separation checkSeparation(const ModelParts& parts, double reciprocalCondition, std::size_t numPointsInSystem)
{
    std::vector<std::vector<double>> columns(parts.getNormalizers().size());
    std::vector<double> scales;
    for (std::size_t v = 0; v < columns.size(); ++v)
    {
        for (const auto& [block, i] : parts.getPoints())
            columns[v].push_back(parts.getDataBlock().getInputValueArraysForBlock(block)[v][i]);
        scales.push_back(parts.getNormalizers()[v].getScale());
    }

    Separation separation;
    separation.reciprocalCondition = reciprocalCondition;
    const ClosestPair pair = findClosestPair(columns, scales);
    separation.distance = pair.distance;
    if (pair.distance == 0.0)
        separation.numRepeats = countRepeats(columns);
    if (pair.first == pair.second)
        return separation;
    const auto [lower, higher] = std::minmax({firstSampleOf(parts, pair.first), firstSampleOf(parts, pair.second)});
    separation.firstSample = lower;
    separation.secondSample = higher;

    std::vector<double> difference;
    for (const std::vector<double>& column : columns)
        difference.push_back(column[pair.second] - column[pair.first]);
    const double conditionOfPair =
        parts.getSemivariogram().evaluate(difference) / static_cast<double>(numPointsInSystem);
    const bool isUnsolvable = separation.reciprocalCondition < smallestReciprocalCondition;
    if (conditionOfPair < smallestReciprocalCondition)
        separation.verdict = pair.distance == 0.0 ? SeparationVerdict::Repeated : SeparationVerdict::TooNear;
    else if (isUnsolvable)
        separation.verdict = conditionOfPair < largestConditionOfBlamedPair ? SeparationVerdict::TooNear
                                                                            : SeparationVerdict::Undetermined;
    return separation;
}

void requireSeparation(const ModelParts& parts, double reciprocalCondition, std::size_t numPointsInSystem)
{
    if (checkSeparation(parts, reciprocalCondition, numPointsInSystem).verdict != SeparationVerdict::Separate)
        throw SurrogateModelInterface::Error("Ill-conditioned matrix");
}

} // namespace fenn::estimation
