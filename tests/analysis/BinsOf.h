#ifndef FENN_TESTS_ANALYSIS_BINSOF_H
#define FENN_TESTS_ANALYSIS_BINSOF_H

#include <cstddef>
#include <vector>

#include "analysis/BinnedSemivariogram.h"

namespace fenn::test
{

/// The bins in all directions.
inline std::vector<analysis::LagBin> binnedSemivariogram(const ModelParts& parts, std::size_t outputVar,
                                                         std::size_t numLags, double maxLag = 0.0)
{
    analysis::BinningOptions options;
    options.outputVar = outputVar;
    options.numLags = numLags;
    options.maxLag = maxLag;
    return analysis::binSemivariogram(parts, options).bins;
}

} // namespace fenn::test

#endif
