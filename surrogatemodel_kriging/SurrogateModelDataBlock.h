#ifndef FENN_SURROGATEMODEL_KRIGING_SURROGATEMODELDATABLOCK_H
#define FENN_SURROGATEMODEL_KRIGING_SURROGATEMODELDATABLOCK_H

#include <utility>
#include <vector>

#include "surrogatemodel_kriging/Normalizer.h"

#if defined(FENN_SURROGATEMODEL_KRIGING_STATIC)
#define FENN_SURROGATEMODEL_KRIGING_EXPORT
#elif defined(_WIN32)
#if defined(FENN_SURROGATEMODEL_KRIGING_BUILD)
#define FENN_SURROGATEMODEL_KRIGING_EXPORT __declspec(dllexport)
#else
#define FENN_SURROGATEMODEL_KRIGING_EXPORT __declspec(dllimport)
#endif
#else
#define FENN_SURROGATEMODEL_KRIGING_EXPORT __attribute__((visibility("default")))
#endif

namespace fenn
{
class DuplicateMerger;
}

/// Sample points in blocks (a host's zones), with one include flag per point.
///
/// Value of input variable v at point i of block b: getInputValueArraysForBlock(b)[v][i], raw units; outputs likewise.
/// Included points are unblanked, the others blanked: these are ignored everywhere. "Walking order" is block by block
/// and, within a block, point by point.
///
/// The value arrays stay the caller's and must outlive the object, as must the three vectors taken by reference; the
/// pointer tables and flags are copied. Counts are measured once, on block 0, and nothing is validated: every block
/// must have as many arrays as block 0, and every array as many entries as its block has points.
///
/// Constructors, getAllUnblankedPts and removeDuplicatePts throw std::bad_alloc; object and argument are then as
/// before. Any number of threads may read one object; removeDuplicatePts must run alone.
class FENN_SURROGATEMODEL_KRIGING_EXPORT SurrogateModelDataBlock
{
public:
    /// One block of numPts points.
    SurrogateModelDataBlock(int numPts, const std::vector<double*>& inputValueArrays_,
                            const std::vector<double*>& outputValueArrays_, const std::vector<bool>& includePtArray,
                            const std::vector<Normalizer>& inputVarNormalizers_,
                            const std::vector<double>& inputVarMinValues_,
                            const std::vector<double>& inputVarMaxValues_);

    /// Any number of blocks; index of the four lists: block. Without a block there are no variables either.
    SurrogateModelDataBlock(const std::vector<int>& numPtsInBlocks_,
                            const std::vector<std::vector<double*>>& inputValueArrays_,
                            const std::vector<std::vector<double*>>& outputValueArrays_,
                            const std::vector<std::vector<bool>>& includePtArrays_,
                            const std::vector<Normalizer>& inputVarNormalizers_,
                            const std::vector<double>& inputVarMinValues_,
                            const std::vector<double>& inputVarMaxValues_);

    SurrogateModelDataBlock(const SurrogateModelDataBlock& other) = delete;
    SurrogateModelDataBlock& operator=(const SurrogateModelDataBlock& other) = delete;
    virtual ~SurrogateModelDataBlock();

    int getNumBlocks() const;
    int getNumInputVars() const;
    int getNumOutputVars() const;

    /// Number of set include flags when they were last counted: at construction and after removeDuplicatePts.
    int getTotalNumUnblankedPoints() const;

    int getNumPtsInBlock(int block) const;
    const std::vector<bool>& getIncludePtArrayForBlock(int block) const;
    const std::vector<double*>& getInputValueArraysForBlock(int block) const;
    const std::vector<double*>& getOutputValueArraysForBlock(int block) const;

    /// The very vector given at construction.
    const std::vector<Normalizer>& getInputVarNormalizers() const;

    /// Always true, deliberately: callers may ask, and nothing is ever rejected.
    bool validate() const;

    /// Extremes of one output variable over the unblanked points; 0 and 0 when there are none. A value that lowers the
    /// minimum is never offered to the maximum: values that only fall, or a single one, leave the maximum at -1e150.
    void getOutputVarMinMax(int outputVar, double& min, double& max) const;

    /// Arithmetic mean over the unblanked points; 0 when there are none.
    double getOutputVarMean(int outputVar) const;

    /// Unbiased variance (denominator count - 1) over the unblanked points; 0 when there are none, NaN for one.
    double getOutputVarSampleVariance(int outputVar) const;

    /// Resizes points to getTotalNumUnblankedPoints() and fills it with (block, point), in walking order.
    void getAllUnblankedPts(std::vector<std::pair<int, int>>& points) const;

    /// Merges coincident unblanked points: all members of a group are blanked, and one averaged point per group is
    /// appended in a new last block (none without groups). Two points belong together when, for each input variable in
    /// turn, they lie in one chain of neighbours no further apart than tolerance times that variable's range (exactly
    /// equal where the range is below 1e-150). Call at most once per object.
    void removeDuplicatePts(double tolerance);

private:
    friend class fenn::DuplicateMerger; // what removeDuplicatePts does, with a record of it

    using SourcePointIterator = std::vector<std::pair<int, int>>::iterator;

    void updateCachedValues();
    int calcTotalNumUnblankedPoints() const;
    void findDuplicatePts(const SourcePointIterator& first, const SourcePointIterator& last, int inputVar,
                          double tolerance);
    void addDuplicatePt(const SourcePointIterator& first, const SourcePointIterator& last);
    void addNewBlock(std::vector<std::vector<double>>& inputValues, std::vector<std::vector<double>>& outputValues,
                     std::vector<bool>& includeFlags);

    std::vector<int> numPtsInBlocks;
    std::vector<std::vector<double*>> inputValueArrays;
    std::vector<std::vector<double*>> outputValueArrays;
    std::vector<std::vector<bool>> includePtArrays;
    const std::vector<Normalizer>& inputVarNormalizers;
    const std::vector<double>& inputVarMinValues;
    const std::vector<double>& inputVarMaxValues;

    // Cached by updateCachedValues.
    int numBlocks;
    int numInputVars;
    int numOutputVars;
    int totalNumUnblankedPoints;

    // The averaged points of removeDuplicatePts: the arrays of the appended block point in here.
    std::vector<std::vector<double>> duplicatePtInputValues;  // per input variable
    std::vector<std::vector<double>> duplicatePtOutputValues; // per output variable
    std::vector<bool> duplicatePtIncludeArray;
};

#endif
