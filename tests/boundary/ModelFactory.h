#ifndef FENN_TESTS_BOUNDARY_MODELFACTORY_H
#define FENN_TESTS_BOUNDARY_MODELFACTORY_H

#include <memory>
#include <vector>

#include "surrogatemodel_common/SurrogateModelInterface.h"

/// Makes the plug-in's model: without merging, with scale 1, range fraction 1 and no nugget. Defined twice, for a host
/// that links the plug-in and for one that loads it at run time.
std::unique_ptr<SurrogateModelInterface> makeModel(const std::vector<double*>& inputs,
                                                   const std::vector<double*>& outputs, int numPoints, int driftOrder,
                                                   int numNearestPoints);

#endif
