#include "surrogatemodel_kriging/BatchInputs.h"

namespace fenn
{

BatchInputs::BatchInputs(const KrigingMatrix& krigingMatrix, const std::vector<SourcePointRef>& sourcePts,
                         const std::set<int>& outputVars, const std::function<const Normalizer&(int)>& normalizerOf)
    : isCentred(std::make_unique<bool[]>(outputVars.size()))
{
    krigingMatrix.calcRowOrder(rowOrder);
    krigingMatrix.gatherCoordinates(sourcePts, points);
    outputStore.resize(outputVars.size() * points.getNumPts());
    for (const int outputVar : outputVars)
    {
        const double reference = normalizerOf(outputVar).getOffset();
        double* values = outputStore.data() + outputs.size() * points.getNumPts();
        krigingMatrix.gatherOutputs(outputVar, reference, sourcePts, values);
        isCentred[outputs.size()] = KrigingMatrix::isCentred(reference);
        references.push_back(reference);
        outputs.push_back(values);
    }
}

} // namespace fenn
