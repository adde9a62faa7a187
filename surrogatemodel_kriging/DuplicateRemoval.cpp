// The part of SurrogateModelDataBlock that merges coincident points; see removeDuplicatePts.

#include <algorithm>
#include <cmath>

#include "surrogatemodel_kriging/MagnitudeGuards.h"
#include "surrogatemodel_kriging/SortedPoints.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace
{

using PointIterator = std::vector<std::pair<int, int>>::iterator;

/// Sorts the points ascending by valueOf and calls mergeRun(first, last) for every chain of two or more neighbours that
/// lie at most threshold apart, in ascending order.
///
/// The sort is stable and puts NaN last: which points meet, and the order in which a group's values are summed, then
/// depend on the samples alone. A NaN difference or threshold ends a chain, so a NaN coordinate joins none.
template <typename ValueOf, typename MergeRun>
void splitIntoChainedRuns(PointIterator first, PointIterator last, double threshold, ValueOf valueOf, MergeRun mergeRun)
{
    std::vector<fenn::PointWithValue> points;
    points.reserve(static_cast<std::size_t>(last - first));
    for (PointIterator point = first; point != last; ++point)
        points.push_back({valueOf(*point), *point});
    fenn::sortByValue(points);
    std::transform(points.begin(), points.end(), first, [](const fenn::PointWithValue& point) { return point.point; });

    const std::size_t count = points.size();
    for (std::size_t i = 0; i < count;)
    {
        std::size_t runEnd = i + 1;
        // Compared with the neighbour before, never with the first of the run: chaining is intended.
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

void SurrogateModelDataBlock::removeDuplicatePts(double tolerance)
{
    if (numInputVars < 1)
        return; // nothing to compare by

    std::vector<std::pair<int, int>> points;
    getAllUnblankedPts(points);
    const std::size_t numAveragedBefore = duplicatePtIncludeArray.size();
    try
    {
        duplicatePtInputValues.resize(static_cast<std::size_t>(numInputVars));
        duplicatePtOutputValues.resize(static_cast<std::size_t>(numOutputVars));
        findDuplicatePts(points.begin(), points.end(), 0, tolerance);
        if (!duplicatePtIncludeArray.empty())
            addNewBlock(duplicatePtInputValues, duplicatePtOutputValues, duplicatePtIncludeArray);
    }
    catch (...)
    {
        // Out of memory: as if nothing had been merged. Nothing here allocates.
        for (std::vector<std::vector<double>>* lists : {&duplicatePtInputValues, &duplicatePtOutputValues})
        {
            for (std::vector<double>& values : *lists)
                values.resize(std::min(values.size(), numAveragedBefore));
        }
        duplicatePtIncludeArray.resize(numAveragedBefore);
        for (const std::pair<int, int>& point : points) // in another order by now, but the same ones
            includePtArrays[static_cast<std::size_t>(point.first)][static_cast<std::size_t>(point.second)] = true;
        const auto numBlocksBefore = static_cast<std::size_t>(numBlocks);
        numPtsInBlocks.resize(numBlocksBefore);
        inputValueArrays.resize(numBlocksBefore);
        outputValueArrays.resize(numBlocksBefore);
        includePtArrays.resize(numBlocksBefore);
        throw;
    }
}

void SurrogateModelDataBlock::findDuplicatePts(const SourcePointIterator& first, const SourcePointIterator& last,
                                               int inputVar, double tolerance)
{
    const auto v = static_cast<std::size_t>(inputVar);
    const double threshold = comparisonThreshold(inputVarMinValues[v], inputVarMaxValues[v], tolerance);
    splitIntoChainedRuns(
        first, last, threshold,
        [&](const std::pair<int, int>& point)
        { return inputValueArrays[static_cast<std::size_t>(point.first)][v][point.second]; },
        [&](const SourcePointIterator& runFirst, const SourcePointIterator& runLast)
        {
            if (inputVar + 1 < numInputVars)
                findDuplicatePts(runFirst, runLast, inputVar + 1, tolerance);
            else
                addDuplicatePt(runFirst, runLast);
        });
}

void SurrogateModelDataBlock::addDuplicatePt(const SourcePointIterator& first, const SourcePointIterator& last)
{
    const auto average = [&](const std::vector<std::vector<double*>>& arrays, std::size_t var)
    {
        double sum = 0.0;
        for (SourcePointIterator point = first; point != last; ++point)
            sum += arrays[static_cast<std::size_t>(point->first)][var][point->second];
        // DELIBERATE: the product with the reciprocal, not a division; the averages' last bits rely on it.
        // Test: DuplicateRemovalTest.AveragesMultiplyByTheReciprocalOfTheCount
        return sum * (1.0 / static_cast<double>(last - first));
    };
    for (std::size_t v = 0; v < duplicatePtInputValues.size(); ++v)
        duplicatePtInputValues[v].push_back(average(inputValueArrays, v));
    for (std::size_t w = 0; w < duplicatePtOutputValues.size(); ++w)
        duplicatePtOutputValues[w].push_back(average(outputValueArrays, w));
    duplicatePtIncludeArray.push_back(true);

    for (SourcePointIterator point = first; point != last; ++point)
        includePtArrays[static_cast<std::size_t>(point->first)][static_cast<std::size_t>(point->second)] = false;
}

void SurrogateModelDataBlock::addNewBlock(std::vector<std::vector<double>>& inputValues,
                                          std::vector<std::vector<double>>& outputValues,
                                          std::vector<bool>& includeFlags)
{
    const auto pointersTo = [](std::vector<std::vector<double>>& arrays, int numVars)
    {
        std::vector<double*> pointers;
        for (std::size_t v = 0; v < static_cast<std::size_t>(numVars); ++v)
            pointers.push_back(arrays[v].data());
        return pointers;
    };
    numPtsInBlocks.push_back(static_cast<int>(includeFlags.size()));
    inputValueArrays.push_back(pointersTo(inputValues, numInputVars));
    outputValueArrays.push_back(pointersTo(outputValues, numOutputVars));
    includePtArrays.push_back(includeFlags);
    updateCachedValues();
}
