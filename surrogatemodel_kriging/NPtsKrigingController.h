#ifndef FENN_SURROGATEMODEL_KRIGING_NPTSKRIGINGCONTROLLER_H
#define FENN_SURROGATEMODEL_KRIGING_NPTSKRIGINGCONTROLLER_H

#include <set>
#include <vector>

#include "surrogatemodel_kriging/KrigingControllerAbstract.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/NearestNeighborSearch.h"

class SemivariogramInterface;

/// Local Kriging: per target, one system over its nearest source points, assembled, factorised and solved on the
/// calling thread.
///
/// Refers to the data block and the semivariogram, which must outlive it. Requests change the one local system: two
/// must not overlap.
class NPtsKrigingController : public virtual KrigingControllerAbstract
{
public:
    /// numNeighbours_: source points per system, at least 1 and below the number of unblanked points. Throws as the
    /// constructor of KrigingMatrix.
    NPtsKrigingController(const SurrogateModelDataBlock* dataBlock_, SemivariogramInterface* semivariogram,
                          int driftOrder, int numNeighbours_);
    ~NPtsKrigingController() override;

    /// Throws at the target whose system fails, or std::bad_alloc; earlier targets keep their values, later ones are
    /// not written.
    void interpolate(const std::vector<double*>& targetCoords, const std::set<int>& outputVars, int numTargets,
                     std::vector<double*>& values, std::vector<double*>& variances) override;

    /// The same, and mu^T f of each target (KrigingMatrix::calcDriftProduct) to an array of its own; null: not wanted.
    /// No bit of values and variances depends on it.
    void interpolateWithDrift(const std::vector<double*>& targetCoords, const std::set<int>& outputVars, int numTargets,
                              std::vector<double*>& values, std::vector<double*>& variances, double* driftProducts);

private:
    int numNeighbours;
    KrigingMatrix krigingMatrix; // that of the last target
    NearestNeighborSearch neighbourSearch;
};

#endif
