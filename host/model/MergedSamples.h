#ifndef FENN_HOST_MODEL_MERGEDSAMPLES_H
#define FENN_HOST_MODEL_MERGEDSAMPLES_H

#include "host/model/SampleTable.h"

namespace krige
{

/// Number of points that merging with this tolerance leaves of the samples, as the library counts them.
int countPointsAfterMerging(const SampleTable& samples, double tolerance);

/// Number of samples that lie at the place of another.
int countCoincidentSamples(const SampleTable& samples);

} // namespace krige

#endif
