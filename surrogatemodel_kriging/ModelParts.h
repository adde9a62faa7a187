#ifndef FENN_SURROGATEMODEL_KRIGING_MODELPARTS_H
#define FENN_SURROGATEMODEL_KRIGING_MODELPARTS_H

#include <memory>
#include <vector>

#include "surrogatemodel_kriging/DuplicateMerger.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SourcePointRef.h"

class SphericalSemivariogram;
class SurrogateModelDataBlock;

namespace fenn
{

/// A model without the system that answers targets: limits and normalizers of the inputs, the data block with merged
/// points, the semivariogram. Everything above the plug-in gets them here, put together as by the plug-in's own model.
///
/// Refers to the host's value arrays, which must outlive it. Immutable after construction: any number of threads may
/// read it.
class ModelParts
{
public:
    /// Arguments as for the constructor of KrigingSurrogateModel. includeFlags: one per sample; the others count for
    /// limits, normalizers and range, and are no points. Empty: every sample is included. Throws the three scaling
    /// messages and std::bad_alloc.
    ModelParts(const std::vector<double*>& inputValueArrays, const std::vector<double*>& outputValueArrays,
               int numPoints, double duplicateTolerance, const std::vector<double>& scaleFactors, double rangeFraction,
               double nugget, const std::vector<bool>& includeFlags = {});
    ModelParts(const ModelParts& other) = delete;
    ModelParts& operator=(const ModelParts& other) = delete;
    ~ModelParts();

    const std::vector<double>& getMinValues() const; // per input variable, over all samples
    const std::vector<double>& getMaxValues() const;
    const std::vector<Normalizer>& getNormalizers() const;
    const SurrogateModelDataBlock& getDataBlock() const;

    /// Not const because controllers take it so; no operation changes it.
    SphericalSemivariogram& getSemivariogram() const;

    /// The unblanked points, block by block, ascending: entry i owns row i of a global system.
    const std::vector<SourcePointRef>& getPoints() const;

    /// Entry k: the samples that averaged point k of block 1 stands for, ascending. Empty when nothing was merged.
    const std::vector<MergedGroup>& getMergedGroups() const;

private:
    std::vector<double> minValues;
    std::vector<double> maxValues;
    std::vector<Normalizer> normalizers;
    std::unique_ptr<SurrogateModelDataBlock> dataBlock;
    std::unique_ptr<SphericalSemivariogram> semivariogram;
    std::vector<SourcePointRef> points;
    std::vector<MergedGroup> mergedGroups;
};

} // namespace fenn

#endif
