#include "surrogatemodel_kriging/KrigingSurrogateModel.h"

#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/ModelAssembly.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"

KrigingSurrogateModel::KrigingSurrogateModel(const std::vector<double*>& inputValueArrays,
                                             const std::vector<double*>& outputValueArrays, int numPoints,
                                             double duplicateTolerance, const std::vector<double>& scaleFactors,
                                             int driftOrder, double rangeFraction, double nugget, int numNearestPoints)
{
    setupMinMaxOffsetAndScale(fenn::arraysToMeasure(inputValueArrays, numPoints), numPoints,
                              fenn::scaleFactorsOrAutomatic(scaleFactors, inputValueArrays.size()));
    // Held here until the controller exists too: a constructor that throws runs no destructor.
    fenn::AssembledParts parts =
        fenn::assembleParts({inputValueArrays, outputValueArrays, numPoints, duplicateTolerance, rangeFraction, nugget},
                            minValues, maxValues, normalizers, nullptr);

    if (numNearestPoints == 0 || numNearestPoints >= parts.dataBlock->getTotalNumUnblankedPoints())
        controller = new AllPtsKrigingController(parts.dataBlock.get(), parts.semivariogram.get(), driftOrder);
    else // negative counts come here too: the Kriging matrix refuses them
        controller =
            new NPtsKrigingController(parts.dataBlock.get(), parts.semivariogram.get(), driftOrder, numNearestPoints);
    semivariogram = parts.semivariogram.release();
    dataBlock = parts.dataBlock.release();
}

KrigingSurrogateModel::~KrigingSurrogateModel()
{
    delete controller;
    delete semivariogram;
    delete dataBlock;
}

void KrigingSurrogateModel::setupMinMaxOffsetAndScale(const std::vector<double*>& inputValueArrays, int numPoints,
                                                      const std::vector<double>& scaleFactors)
{
    fenn::setUpNormalization(inputValueArrays, numPoints, scaleFactors, minValues, maxValues, normalizers);
}

void KrigingSurrogateModel::activateDependentVariables(const std::set<int>& dependentVars)
{
    controller->setOutputVars(dependentVars);
}

void KrigingSurrogateModel::interpolateDependentValues(const std::vector<double*>& targetValueArrays,
                                                       const std::set<int>& dependentVars,
                                                       std::vector<double*>& resultArrays, size_t numTargets) const
{
    std::vector<double*> noVariances;
    controller->interpolate(targetValueArrays, dependentVars, static_cast<int>(numTargets), resultArrays, noVariances);
}

bool KrigingSurrogateModel::surfaceCoefficientInformationAvailable() const
{
    return false;
}

std::string KrigingSurrogateModel::surfaceCoefficientInformation(int /*index*/)
{
    return {};
}

bool KrigingSurrogateModel::qualityMetricInformationAvailable() const
{
    return false;
}

std::string KrigingSurrogateModel::qualityMetricInformation(int /*index*/)
{
    return {};
}
