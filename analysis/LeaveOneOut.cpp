#include "analysis/LeaveOneOut.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "analysis/InverseDiagonal.h"
#include "analysis/MergedGroups.h"
#include "analysis/ModelBuilder.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/KrigingModelAccess.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/NearestNeighborSearch.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::analysis
{

namespace
{

using Points = std::vector<SourcePointRef>;

/// Points of a larger variance, in sills, are those that the others do not determine: exactly, it would be infinite.
constexpr double largestVariance = 1e10;

constexpr double noEstimate = std::numeric_limits<double>::quiet_NaN();

std::size_t toIndex(int i)
{
    return static_cast<std::size_t>(i);
}

/// As the constructor of KrigingMatrix would for one point less, which would make room for the system.
void checkOthersSuffice(std::size_t numPts, int numInputVars, int driftOrder)
{
    const auto numOthers = static_cast<int>(numPts) - 1;
    if (numOthers <= numInputVars)
        throw SurrogateModelInterface::Error("Not enough source points for kriging.");
    if (numOthers < numDriftTerms(driftOrder, numInputVars))
        throw SurrogateModelInterface::Error("Not enough source points to calculate drift.");
}

void estimateGlobally(const KrigingSurrogateModel& parts, const Points& points, int driftOrder,
                      const Progress& progress, LeaveOneOutResult& result)
{
    const SurrogateModelDataBlock& block = KrigingModelAccess::getDataBlock(parts);
    checkOthersSuffice(points.size(), block.getNumInputVars(), driftOrder);
    KrigingMatrix matrix(block, static_cast<int>(points.size()), &KrigingModelAccess::getSemivariogram(parts),
                         driftOrder);
    std::vector<double> scratch(toIndex(block.getNumInputVars()));
    matrix.assemble(points, scratch);
    matrix.luDecompose();

    const std::vector<double> diagonal = calcInverseDiagonal(matrix, points.size(), progress);
    const auto isSolvable = [&](std::size_t i)
    {
        return std::fabs(1.0 / diagonal[i]) <= largestVariance;
    };
    for (std::size_t i = 0; i < points.size(); ++i)
        result.estimates.variances[i] = isSolvable(i) ? -1.0 / diagonal[i] : noEstimate;

    std::vector<double> solution(toIndex(matrix.getDimension()));
    for (std::size_t w = 0; w < result.truths.size(); ++w)
    {
        // Errors do not depend on a common offset of the outputs, for weights sum to 1; their rounding does.
        const double mean = block.getOutputVarMean(static_cast<int>(w));
        std::fill(solution.begin(), solution.end(), 0.0);
        for (std::size_t i = 0; i < points.size(); ++i)
            solution[i] = result.truths[w][i] - mean;
        matrix.luSolve(solution.data());
        for (std::size_t i = 0; i < points.size(); ++i)
            result.estimates.values[w][i] =
                isSolvable(i) ? result.truths[w][i] - solution[i] / diagonal[i] : noEstimate;
    }
}

void estimateLocally(const KrigingSurrogateModel& parts, const Points& points, int driftOrder, int numNeighbours,
                     const Progress& progress, LeaveOneOutResult& result)
{
    const SurrogateModelDataBlock& block = KrigingModelAccess::getDataBlock(parts);
    KrigingMatrix matrix(block, numNeighbours, &KrigingModelAccess::getSemivariogram(parts), driftOrder);
    const NearestNeighborSearch search(&block, block.getNumInputVars(), block.getNumBlocks());
    const auto dimension = toIndex(matrix.getDimension());
    std::vector<double> rightHandSide(dimension);
    std::vector<double> solution(dimension);
    std::vector<double> coords(toIndex(block.getNumInputVars()));
    std::vector<double> scratch(coords.size());

    for (std::size_t i = 0; i < points.size(); ++i)
    {
        const std::vector<double*>& inputs = block.getInputValueArraysForBlock(points[i].first);
        for (std::size_t v = 0; v < coords.size(); ++v)
            coords[v] = inputs[v][points[i].second];
        Points neighbours(toIndex(numNeighbours) + 1);
        neighbours.resize(toIndex(search.findNearestPts(coords, numNeighbours + 1, neighbours)));
        // The point itself, unless more coincident ones than were asked for come before it.
        const auto self = std::find(neighbours.begin(), neighbours.end(), points[i]);
        if (self != neighbours.end())
            neighbours.erase(self);
        const bool isSolvable = neighbours.size() >= toIndex(numNeighbours);
        if (isSolvable)
        {
            neighbours.resize(toIndex(numNeighbours));
            matrix.assemble(neighbours, scratch);
            matrix.luDecompose();
            matrix.buildRightHandSide(rightHandSide.data(), 0, coords, neighbours, scratch);
            solution = rightHandSide;
            matrix.luSolve(solution.data());
        }
        for (std::size_t w = 0; w < result.truths.size(); ++w)
            result.estimates.values[w][i] =
                isSolvable ? matrix.estimate(static_cast<int>(w), neighbours, solution.data()) : noEstimate;
        result.estimates.variances[i] =
            isSolvable ? matrix.dotProduct(solution.data(), rightHandSide.data()) : noEstimate;
        report(progress, i + 1, points.size());
    }
}

} // namespace

LeaveOneOutResult leaveOneOut(const SampleSet& samples, const ModelSettings& settings, const Progress& progress)
{
    const std::unique_ptr<KrigingSurrogateModel> parts = buildModelParts(samples, settings);
    const SurrogateModelDataBlock& block = KrigingModelAccess::getDataBlock(*parts);
    Points points;
    block.getAllUnblankedPts(points);

    LeaveOneOutResult result;
    const std::vector<std::vector<std::size_t>> groups = findMergedGroups(samples, settings.duplicateTolerance);
    for (const SourcePointRef& point : points)
        result.members.push_back(point.first == 0 ? std::vector<std::size_t>{toIndex(point.second)}
                                                  : groups.at(toIndex(point.second)));
    for (int w = 0; w < block.getNumOutputVars(); ++w)
    {
        result.truths.emplace_back();
        for (const SourcePointRef& point : points)
            result.truths.back().push_back(block.getOutputValueArraysForBlock(point.first)[toIndex(w)][point.second]);
        result.outputVariances.push_back(block.getOutputVarSampleVariance(w));
    }
    result.estimates.values.assign(result.truths.size(), std::vector<double>(points.size()));
    result.estimates.variances.resize(points.size());

    const int numNeighbours = settings.numNearestPoints;
    if (numNeighbours == 0 || toIndex(numNeighbours) >= points.size())
        estimateGlobally(*parts, points, settings.driftOrder, progress, result);
    else
        estimateLocally(*parts, points, settings.driftOrder, numNeighbours, progress, result);
    return result;
}

} // namespace fenn::analysis
