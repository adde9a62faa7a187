#ifndef FENN_ANALYSIS_MODELPOINTS_H
#define FENN_ANALYSIS_MODELPOINTS_H

#include <cstddef>
#include <vector>

class SurrogateModelDataBlock;

namespace fenn
{
class ModelParts;
}

namespace fenn::analysis
{

/// Per point of ModelParts::getPoints the samples that it stands for, ascending: one, or those merged.
std::vector<std::vector<std::size_t>> membersOfPoints(const ModelParts& parts);

/// Per output variable the values at the points, averaged where samples were merged.
std::vector<std::vector<double>> outputsOfPoints(const ModelParts& parts);

/// These values of an output variable less its mean. Errors of estimates do not depend on a common offset of the
/// outputs, for weights sum to 1; their rounding does.
std::vector<double> centred(std::vector<double> values, const SurrogateModelDataBlock& block, std::size_t outputVar);

} // namespace fenn::analysis

#endif
