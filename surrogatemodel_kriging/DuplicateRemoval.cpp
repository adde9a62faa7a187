// The part of SurrogateModelDataBlock that merges coincident points; see removeDuplicatePts.

#include "surrogatemodel_kriging/DuplicateMerger.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

void SurrogateModelDataBlock::removeDuplicatePts(double tolerance)
{
    fenn::DuplicateMerger(*this, tolerance, nullptr).merge();
}

// Kept because its symbol is exported: removeDuplicatePts uses the same rule without it.
void SurrogateModelDataBlock::findDuplicatePts(const SourcePointIterator& first, const SourcePointIterator& last,
                                               int inputVar, double tolerance)
{
    fenn::DuplicateMerger(*this, tolerance, nullptr).split(first, last, inputVar);
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
