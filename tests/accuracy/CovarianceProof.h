#ifndef FENN_TESTS_ACCURACY_COVARIANCEPROOF_H
#define FENN_TESTS_ACCURACY_COVARIANCEPROOF_H

#include <string>

#include "tests/accuracy/HardSystems.h"

namespace fenn::test
{

/// What the covariance form says of one system, beside the exact solution of the very doubles that the plug-in's system
/// and right-hand sides hold.
struct CovarianceProof
{
    std::string refusal;     // why the engine does not apply; else empty
    double bound = 0.0;      // proven, in standard deviations
    double error = 0.0;      // the worst of all targets, likewise; the last rounding of an estimate left aside
    double worstRatio = 0.0; // of a target's error to the bound that was reported after it alone had been asked for
};

CovarianceProof checkProof(const HardSystem& system);

} // namespace fenn::test

#endif
