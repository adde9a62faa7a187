#ifndef FENN_SURROGATEMODEL_KRIGING_KRIGINGCONTROLLERABSTRACT_H
#define FENN_SURROGATEMODEL_KRIGING_KRIGINGCONTROLLERABSTRACT_H

#include <set>
#include <vector>

#include "surrogatemodel_kriging/Normalizer.h"

class SurrogateModelDataBlock;

/// A way to answer a model's requests, with what all of them need: the data block, the chosen output variables and one
/// centring offset per output variable.
///
/// Refers to the data block, which must outlive it. setOutputVars must not run beside interpolate.
class KrigingControllerAbstract
{
public:
    explicit KrigingControllerAbstract(const SurrogateModelDataBlock* dataBlock_);
    KrigingControllerAbstract(const KrigingControllerAbstract& other) = delete;
    KrigingControllerAbstract& operator=(const KrigingControllerAbstract& other) = delete;
    virtual ~KrigingControllerAbstract();

    /// Replaces the chosen output variables, by index, unchecked, and refreshes the centring offsets of those of them
    /// that are being centred. Throws std::bad_alloc; the former choice then stands.
    virtual void setOutputVars(const std::set<int>& outputVars);

    /// Estimates output variables at numTargets targets.
    /// targetCoords: raw coordinates, one array per input variable. values: one array per element of outputVars, in
    /// ascending order, with room for numTargets estimates. variances: empty, or laid out like values; receives the
    /// Kriging variance of a sill of 1 for each output. The caller owns all arrays.
    /// Throws Error "Singular matrix" or "Value overflow", and std::bad_alloc; what was written before the failure
    /// stays, and the next request is answered as if there had been none.
    virtual void interpolate(const std::vector<double*>& targetCoords, const std::set<int>& outputVars, int numTargets,
                             std::vector<double*>& values, std::vector<double*>& variances) = 0;

    /// Its offset centres the estimates of that output variable; unchecked index.
    const Normalizer& getOutputNormalizer(int outputVar) const;

protected:
    const SurrogateModelDataBlock* dataBlock;
    std::set<int> activeOutputVars;
    std::set<int> centredOutputVars;           // those whose offsets setOutputVars refreshes
    std::vector<Normalizer> outputNormalizers; // per output variable; only the offset is read
};

#endif
