#include "surrogatemodel_kriging/KrigingControllerAbstract.h"

#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

KrigingControllerAbstract::KrigingControllerAbstract(const SurrogateModelDataBlock* dataBlock_)
    : dataBlock(dataBlock_), outputNormalizers(static_cast<std::size_t>(dataBlock_->getNumOutputVars()))
{
}

KrigingControllerAbstract::~KrigingControllerAbstract() = default;

void KrigingControllerAbstract::setOutputVars(const std::set<int>& outputVars)
{
    if (&outputVars != &activeOutputVars)
    {
        std::set<int> chosen = outputVars; // should memory run out, the former choice stands
        activeOutputVars.swap(chosen);
    }
    for (const int outputVar : outputVars)
    {
        // DELIBERATE: presence is asked for, not absence. Nothing in this class puts a variable into the set, so that
        // estimates are plain sums unless a derived controller chose to centre them; results rely on it to the bit.
        // Test: KrigingControllerAbstractTest.AVariableThatIsNotCentredKeepsItsOffset
        if (centredOutputVars.count(outputVar) == 0)
            continue;
        double min = 0.0;
        double max = 0.0;
        dataBlock->getOutputVarMinMax(outputVar, min, max);
        outputNormalizers[static_cast<std::size_t>(outputVar)].setOffset((min + max) * -0.5);
        centredOutputVars.insert(outputVar);
    }
}

const Normalizer& KrigingControllerAbstract::getOutputNormalizer(int outputVar) const
{
    return outputNormalizers[static_cast<std::size_t>(outputVar)];
}
