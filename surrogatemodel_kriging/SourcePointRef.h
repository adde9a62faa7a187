#ifndef FENN_SURROGATEMODEL_KRIGING_SOURCEPOINTREF_H
#define FENN_SURROGATEMODEL_KRIGING_SOURCEPOINTREF_H

#include <utility>

/// Names one sample point of a SurrogateModelDataBlock: (block index, point index within that block). Point indices
/// count every point of the block, blanked or not.
using SourcePointRef = std::pair<int, int>;

#endif
