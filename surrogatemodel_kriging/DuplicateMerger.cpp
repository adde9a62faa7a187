#include "surrogatemodel_kriging/DuplicateMerger.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "surrogatemodel_kriging/MagnitudeGuards.h"
#include "surrogatemodel_kriging/SortedPoints.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn
{

namespace
{

using PointIterator = DuplicateMerger::PointIterator;

/// Sorts the points ascending by valueOf and calls mergeRun(first, last), ascending, for every chain of two or more
/// points of which each lies at most threshold from the one before.
///
/// The sort is stable and puts NaN last: which points meet, and the order in which a group's values are summed, then
/// depend on the samples alone. A NaN difference or threshold ends a chain, so a NaN coordinate joins none.
template <typename ValueOf, typename MergeRun>
void splitIntoChainedRuns(PointIterator first, PointIterator last, double threshold, ValueOf valueOf, MergeRun mergeRun)
{
    std::vector<PointWithValue> points;
    points.reserve(static_cast<std::size_t>(last - first));
    for (PointIterator point = first; point != last; ++point)
        points.push_back({valueOf(*point), *point});
    sortByValue(points);
    std::transform(points.begin(), points.end(), first, [](const PointWithValue& point) { return point.point; });

    const std::size_t count = points.size();
    for (std::size_t i = 0; i < count;)
    {
        std::size_t runEnd = i + 1;
        // Compared with the point before, never with the first of the run: chaining is intended.
        while (runEnd < count && std::fabs(points[runEnd].value - points[runEnd - 1].value) <= threshold)
            ++runEnd;
        if (runEnd - i > 1)
            mergeRun(first + static_cast<std::ptrdiff_t>(i), first + static_cast<std::ptrdiff_t>(runEnd));
        i = runEnd;
    }
}

double comparisonThreshold(double min, double max, double tolerance)
{
    const double range = max - min;
    return range < effectivelyZero ? 0.0 : range * tolerance;
}

} // namespace

DuplicateMerger::DuplicateMerger(SurrogateModelDataBlock& block_, double tolerance_, std::vector<MergedGroup>* groups_)
    : block(block_), tolerance(tolerance_), groups(groups_)
{
}

void DuplicateMerger::merge()
{
    if (block.numInputVars < 1)
        return; // nothing to compare by

    std::vector<SourcePointRef> points;
    block.getAllUnblankedPts(points);
    const std::size_t numAveragedBefore = block.duplicatePtIncludeArray.size();
    try
    {
        block.duplicatePtInputValues.resize(static_cast<std::size_t>(block.numInputVars));
        block.duplicatePtOutputValues.resize(static_cast<std::size_t>(block.numOutputVars));
        split(points.begin(), points.end(), 0);
        if (!block.duplicatePtIncludeArray.empty())
            block.addNewBlock(block.duplicatePtInputValues, block.duplicatePtOutputValues,
                              block.duplicatePtIncludeArray);
    }
    catch (...)
    {
        undo(points, numAveragedBefore);
        throw;
    }
}

void DuplicateMerger::split(PointIterator first, PointIterator last, int inputVar)
{
    const auto v = static_cast<std::size_t>(inputVar);
    const double threshold = comparisonThreshold(block.inputVarMinValues[v], block.inputVarMaxValues[v], tolerance);
    splitIntoChainedRuns(
        first, last, threshold,
        [&](const SourcePointRef& point)
        { return block.inputValueArrays[static_cast<std::size_t>(point.first)][v][point.second]; },
        [&](PointIterator runFirst, PointIterator runLast)
        {
            if (inputVar + 1 < block.numInputVars)
            {
                split(runFirst, runLast, inputVar + 1);
                return;
            }
            block.addDuplicatePt(runFirst, runLast);
            if (groups != nullptr)
            {
                groups->emplace_back(runFirst, runLast);
                std::sort(groups->back().begin(), groups->back().end());
            }
        });
}

/// After memory has run out: as if nothing had been merged. points: all that were unblanked, in any order. Allocates
/// nothing.
void DuplicateMerger::undo(const std::vector<SourcePointRef>& points, std::size_t numAveragedBefore)
{
    for (std::vector<std::vector<double>>* lists : {&block.duplicatePtInputValues, &block.duplicatePtOutputValues})
    {
        for (std::vector<double>& values : *lists)
            values.resize(std::min(values.size(), numAveragedBefore));
    }
    block.duplicatePtIncludeArray.resize(numAveragedBefore);
    for (const SourcePointRef& point : points)
        block.includePtArrays[static_cast<std::size_t>(point.first)][static_cast<std::size_t>(point.second)] = true;
    const auto numBlocksBefore = static_cast<std::size_t>(block.numBlocks);
    block.numPtsInBlocks.resize(numBlocksBefore);
    block.inputValueArrays.resize(numBlocksBefore);
    block.outputValueArrays.resize(numBlocksBefore);
    block.includePtArrays.resize(numBlocksBefore);
    if (groups != nullptr)
        groups->clear();
}

} // namespace fenn
