#include "ModelFactory.h"

#include "surrogatemodel_kriging/KrigingSurrogateModel.h"

std::unique_ptr<SurrogateModelInterface> makeModel(const std::vector<double*>& inputs,
                                                   const std::vector<double*>& outputs, int numPoints, int driftOrder,
                                                   int numNearestPoints)
{
    const std::vector<double> scales(inputs.size(), 1.0);
    return std::make_unique<KrigingSurrogateModel>(inputs, outputs, numPoints, -1.0, scales, driftOrder, 1.0, 0.0,
                                                   numNearestPoints);
}
