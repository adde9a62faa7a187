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

/// An input variable at the points of a model, in the order of ModelParts::getPoints, raw units; averages where samples
/// were merged.
std::vector<double> inputOfPoints(const ModelParts& parts, std::size_t inputVar);

/// An output variable likewise.
std::vector<double> outputOfPoints(const ModelParts& parts, std::size_t outputVar);

/// Sample variance of an output variable over the points (denominator count - 1); NaN for a single one.
double varianceOfPoints(const ModelParts& parts, std::size_t outputVar);

/// Per output variable the values at the points, averaged where samples were merged.
std::vector<std::vector<double>> outputsOfPoints(const ModelParts& parts);

/// These values of an output variable less its mean. Errors of estimates do not depend on a common offset of the
/// outputs, for weights sum to 1; their rounding does.
std::vector<double> centred(std::vector<double> values, const SurrogateModelDataBlock& block, std::size_t outputVar);

} // namespace fenn::analysis

#endif
