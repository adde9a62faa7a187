#ifndef FENN_SURROGATEMODEL_KRIGING_BATCHINPUTS_H
#define FENN_SURROGATEMODEL_KRIGING_BATCHINPUTS_H

#include <functional>
#include <memory>
#include <set>
#include <vector>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SourcePointRef.h"

namespace fenn
{

/// What all batches of a request share, in the order of the system's rows. Gathered anew for each request, so that it
/// sees what the host changed since the last one. Any number of threads may read it.
struct BatchInputs
{
    /// krigingMatrix: factorised, over sourcePts. normalizerOf: gives each output's centring offset.
    BatchInputs(const KrigingMatrix& krigingMatrix, const std::vector<SourcePointRef>& sourcePts,
                const std::set<int>& outputVars, const std::function<const Normalizer&(int)>& normalizerOf);
    BatchInputs(const BatchInputs& other) = delete;
    BatchInputs& operator=(const BatchInputs& other) = delete;

    PointColumns points;       // raw coordinates of the source points
    std::vector<int> rowOrder; // see Matrix::calcRowOrder

    // Per output variable, in ascending order.
    std::vector<double> references;     // the centring offset
    std::unique_ptr<bool[]> isCentred;  // whether estimates are summed around it
    std::vector<const double*> outputs; // values of the source points, less the reference where centred
    std::vector<double> outputStore;
};

} // namespace fenn

#endif
