#ifndef FENN_SURROGATEMODEL_KRIGING_MODELASSEMBLY_H
#define FENN_SURROGATEMODEL_KRIGING_MODELASSEMBLY_H

#include <memory>
#include <vector>

#include "surrogatemodel_kriging/DuplicateMerger.h"
#include "surrogatemodel_kriging/Normalizer.h"

class SphericalSemivariogram;
class SurrogateModelDataBlock;

namespace fenn
{

// The steps that put a model's parts together. The constructor of KrigingSurrogateModel takes them, into its own
// members; ModelParts takes the same ones for everything above the plug-in.

/// The arrays whose limits are measured: the host's, or, without samples, when these may be missing, one zero for each
/// variable.
std::vector<double*> arraysToMeasure(const std::vector<double*>& inputValueArrays, int numPoints);

/// The given factors, or -1 for every input variable if there are none.
std::vector<double> scaleFactorsOrAutomatic(const std::vector<double>& scaleFactors, std::size_t numInputVars);

/// Measures the limits of the input variables and derives their normalizers; see the constructor of
/// KrigingSurrogateModel for the factors. Throws its three scaling messages: those about a factor before anything is
/// changed, the one about a range with limits and some scales set.
void setUpNormalization(const std::vector<double*>& inputValueArrays, int numPoints,
                        const std::vector<double>& scaleFactors, std::vector<double>& minValues,
                        std::vector<double>& maxValues, std::vector<Normalizer>& normalizers);

/// What the constructor of KrigingSurrogateModel is given, as far as the steps below need it. Refers, does not own.
struct ModelArguments
{
    const std::vector<double*>& inputValueArrays;
    const std::vector<double*>& outputValueArrays;
    int numPoints;
    double duplicateTolerance;
    double rangeFraction;
    double nugget;
    const std::vector<bool>* includeFlags = nullptr; // one per sample; null: every sample is included
};

struct AssembledParts
{
    std::unique_ptr<SurrogateModelDataBlock> dataBlock;
    std::unique_ptr<SphericalSemivariogram> semivariogram;
};

/// Stores the samples, merges coincident ones and makes the semivariogram. The parts refer to the three vectors, which
/// must outlive them. groups: as for DuplicateMerger. Throws std::bad_alloc.
AssembledParts assembleParts(const ModelArguments& arguments, const std::vector<double>& minValues,
                             const std::vector<double>& maxValues, const std::vector<Normalizer>& normalizers,
                             std::vector<MergedGroup>* groups);

} // namespace fenn

#endif
