#ifndef FENN_TESTS_ACCURACY_MODELFIGURES_H
#define FENN_TESTS_ACCURACY_MODELFIGURES_H

#include <cstddef>

#include "tests/accuracy/HardSystems.h"

namespace fenn::test
{

/// What a model says where the answer is known. Errors are the worst ones, over the largest value in question.
struct ModelFigures
{
    double polynomialError = 0.0; // at the targets within the samples' box, of every degree up to the drift's order
    double sampleError = 0.0;     // at every sample; 0 where the system has a nugget
    std::size_t numFailures = 0;  // of targets that ended in an Error
};

/// The exported model over all the points of a system, or over the nearest ones.
ModelFigures measureModel(const HardSystem& system, int numNearestPoints);

/// Neighbours for a local model: halfway between the fewest that its drift needs and all; 0 when there is nothing
/// between.
int numNearestPointsFor(const HardSystem& system);

} // namespace fenn::test

#endif
