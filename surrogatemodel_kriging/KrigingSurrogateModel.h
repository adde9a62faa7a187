#ifndef FENN_SURROGATEMODEL_KRIGING_KRIGINGSURROGATEMODEL_H
#define FENN_SURROGATEMODEL_KRIGING_KRIGINGSURROGATEMODEL_H

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

class KrigingControllerAbstract;
class SemivariogramInterface;

namespace fenn
{
class ModelAccess;
}

/// Universal Kriging over scattered samples, with a spherical semivariogram and a polynomial drift.
///
/// Estimates are the weighted sums of sample outputs whose weights solve the universal Kriging system in semivariogram
/// form (G. Matheron, "Le krigeage universel", 1969; N. Cressie, Statistics for Spatial Data, Wiley, 1993, chapter 3).
/// Globally, one system over all points is factorised at construction and shared by all targets; locally, one system
/// over its neighbours is solved per target. Inputs are normalised per variable; nothing is fitted to the samples.
///
/// The host's value arrays are referred to, not copied: they must outlive the model. Sample coordinates and outputs
/// are read anew by each request.
///
/// Threads: models share nothing that changes, so any number of threads may each build, ask and destroy models of their
/// own at once. One global model may be asked by several threads at once: each request gets its own results and throws
/// its own failure; the worker threads are the model's own and are gone when no request is left. Where the system makes
/// no more threads, the thread that builds or asks does all the work, to the same bits; deleting a model whose pool was
/// refused threads takes up to a second and leaves that pool's memory allocated. One local model must not run two
/// requests at once, for they would share its one system. On either, activateDependentVariables must not run beside a
/// request, nor may the host change the value arrays meanwhile; the four reports may be asked at any time.
class FENN_SURROGATEMODEL_KRIGING_EXPORT KrigingSurrogateModel : public virtual SurrogateModelInterface
{
public:
    /// inputValueArrays, outputValueArrays: one array per variable, numPoints values each, raw units. They are not read
    /// when numPoints is below 1, which is never enough.
    /// duplicateTolerance: >= 0 merges samples that agree within this fraction of each input variable's range; a
    /// negative one or NaN leaves them alone.
    /// scaleFactors: empty (-1 for every input variable) or one each: s > 0 is the variable's scale, -k asks for a
    /// normalised range of 2k; a common factor then brings the geometric mean of extreme normalised ranges to 2.
    /// driftOrder: 0 (constant mean, ordinary Kriging) to 4; more acts as 4.
    /// rangeFraction: semivariogram range over the diagonal of the normalised sample box. nugget: with sill 1.
    /// numNearestPoints: 0, or at least the number of points after merging: global; otherwise the points per local
    /// system.
    ///
    /// Throws Error with "Scaling factor too large", "Scaling factor too small", "Value range too small to normalize
    /// data", "Not enough source points for kriging.", "Not enough source points to calculate drift." or, globally,
    /// "Singular matrix"; and std::bad_alloc. Nothing is left behind then.
    KrigingSurrogateModel(const std::vector<double*>& inputValueArrays, const std::vector<double*>& outputValueArrays,
                          int numPoints, double duplicateTolerance, const std::vector<double>& scaleFactors,
                          int driftOrder, double rangeFraction, double nugget, int numNearestPoints);

    ~KrigingSurrogateModel() override;

    /// Throws std::bad_alloc; the former choice then stands.
    void activateDependentVariables(const std::set<int>& dependentVars) override;

    /// Indices are not checked. numTargets is passed on as a 32-bit signed count, deliberately without a range test.
    /// Throws Error with "Singular matrix" or "Value overflow", and std::bad_alloc; estimates written before the
    /// failure stay, and the model answers later requests as if there had been none.
    void interpolateDependentValues(const std::vector<double*>& targetValueArrays, const std::set<int>& dependentVars,
                                    std::vector<double*>& resultArrays, size_t numTargets) const override;

    // This kind of model has nothing to report.
    bool surfaceCoefficientInformationAvailable() const override;
    std::string surfaceCoefficientInformation(int index) override;
    bool qualityMetricInformationAvailable() const override;
    std::string qualityMetricInformation(int index) override;

private:
    friend class fenn::ModelAccess; // for tests

    void setupMinMaxOffsetAndScale(const std::vector<double*>& inputValueArrays, int numPoints,
                                   const std::vector<double>& scaleFactors);

    std::vector<double> minValues;       // per input variable, before any merging of samples
    std::vector<double> maxValues;       // likewise
    std::vector<Normalizer> normalizers; // per input variable

    // Owned. The controller refers to the other two, these to the vectors above: the destructor deletes controller,
    // semivariogram, data block, in that order and not in the order of declaration.
    SemivariogramInterface* semivariogram = nullptr;
    KrigingControllerAbstract* controller = nullptr;
    SurrogateModelDataBlock* dataBlock = nullptr;
};

#endif
