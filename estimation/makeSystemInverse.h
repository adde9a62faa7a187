#ifndef FENN_ESTIMATION_MAKESYSTEMINVERSE_H
#define FENN_ESTIMATION_MAKESYSTEMINVERSE_H

#include <memory>

#include "estimation/SystemInverse.h"
#include "estimation/chooseEstimator.h"

namespace fenn::estimation
{

/// From the covariance form where it is accurate, otherwise, and where options ask for it, from the plug-in's own
/// factorisation. The choice depends on the model and the options alone. parts must outlive the inverse. Throws as the
/// constructor of GlobalSystem, and what options.checkStandIn throws.
std::unique_ptr<SystemInverse> makeSystemInverse(const ModelParts& parts, int driftOrder,
                                                 const EstimatorOptions& options);

} // namespace fenn::estimation

#endif
