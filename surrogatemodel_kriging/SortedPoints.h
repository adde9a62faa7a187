#ifndef FENN_SURROGATEMODEL_KRIGING_SORTEDPOINTS_H
#define FENN_SURROGATEMODEL_KRIGING_SORTEDPOINTS_H

#include <vector>

#include "surrogatemodel_kriging/SourcePointRef.h"

namespace fenn
{

/// A point and its value of one input variable: sorting reads nothing else.
struct PointWithValue
{
    double value;
    SourcePointRef point;
};

/// Sorts ascending by value, NaN last, equal values (-0 equals +0) in their former order.
void sortByValue(std::vector<PointWithValue>& points);

} // namespace fenn

#endif
