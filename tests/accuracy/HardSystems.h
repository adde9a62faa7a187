#ifndef FENN_TESTS_ACCURACY_HARDSYSTEMS_H
#define FENN_TESTS_ACCURACY_HARDSYSTEMS_H

#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/ModelSample.h"

namespace fenn::test
{

/// One Kriging system with the targets that are put to it.
struct HardSystem
{
    std::string family;
    std::string name;
    std::vector<std::vector<double>> inputs;
    std::vector<double> outputs; // of one output variable, without any relation from point to point
    ModelSettings settings;      // of the model over all points
    std::string failure;         // the text of the Error that the factorisation throws; mostly empty

    /// One list per input variable. First targets between two samples each, then one on a sample, one beside a sample,
    /// two anywhere in the box, a corner of it and one outside.
    std::vector<std::vector<double>> targets;

    std::size_t getNumPts() const
    {
        return outputs.size();
    }
};

constexpr std::size_t numTargetsBetweenSamples = 6;
constexpr std::size_t numHardTargets = numTargetsBetweenSamples + 6;

/// One family after the other.
std::vector<HardSystem> makeHardSystems();

/// Point i of one list per variable.
std::vector<double> pointAt(const std::vector<std::vector<double>>& points, std::size_t i);

double largestMagnitude(const std::vector<double>& values);

} // namespace fenn::test

#endif
