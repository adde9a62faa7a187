#ifndef FENN_SURROGATEMODEL_KRIGING_DUPLICATEMERGER_H
#define FENN_SURROGATEMODEL_KRIGING_DUPLICATEMERGER_H

#include <cstddef>
#include <vector>

#include "surrogatemodel_kriging/SourcePointRef.h"

class SurrogateModelDataBlock;

namespace fenn
{

/// The points that one averaged point stands for, ascending.
using MergedGroup = std::vector<SourcePointRef>;

/// Merges the coincident points of a data block and records which ones: the rule behind
/// SurrogateModelDataBlock::removeDuplicatePts. It stands apart because that class crosses the library's boundary: its
/// size is fixed, and it has no room for the groups.
///
/// Refers to block and groups.
class DuplicateMerger
{
public:
    using PointIterator = std::vector<SourcePointRef>::iterator;

    /// groups: null, or a list that receives one entry per averaged point, in their order.
    DuplicateMerger(SurrogateModelDataBlock& block_, double tolerance_, std::vector<MergedGroup>* groups_);

    /// As SurrogateModelDataBlock::removeDuplicatePts. Throws std::bad_alloc; the block is then as before and the list
    /// of groups empty.
    void merge();

    /// As SurrogateModelDataBlock::findDuplicatePts: merges what stays together through inputVar and all later input
    /// variables. Sorts [first, last).
    void split(PointIterator first, PointIterator last, int inputVar);

private:
    void undo(const std::vector<SourcePointRef>& points, std::size_t numAveragedBefore);

    SurrogateModelDataBlock& block;
    double tolerance;
    std::vector<MergedGroup>* groups;
};

} // namespace fenn

#endif
