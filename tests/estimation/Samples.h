#ifndef FENN_TESTS_ESTIMATION_SAMPLES_H
#define FENN_TESTS_ESTIMATION_SAMPLES_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "estimation/SampleSet.h"
#include "tests/support/Samples.h"

namespace fenn::test
{

/// Points uniform in the unit square with two smooth outputs of different scale, and some noise.
inline estimation::SampleSet smoothSamples(std::size_t numSamples, std::uint64_t seed)
{
    std::vector<std::vector<double>> inputs = randomValues(2, numSamples, 0.0, 1.0, seed);
    const std::vector<double> noise = randomValues(1, numSamples, -0.05, 0.05, seed + 1)[0];
    std::vector<std::vector<double>> outputs(2);
    for (std::size_t i = 0; i < numSamples; ++i)
    {
        const double x = inputs[0][i];
        const double y = inputs[1][i];
        outputs[0].push_back(std::sin(5.0 * x) + y * y + noise[i]);
        outputs[1].push_back(1000.0 + 100.0 * std::cos(3.0 * x * y));
    }
    return {std::move(inputs), std::move(outputs)};
}

/// The message of the exception of this type that the call throws.
template <typename Exception, typename Call>
std::string messageOf(Call call)
{
    try
    {
        call();
    }
    catch (const Exception& exception)
    {
        return exception.what();
    }
    ADD_FAILURE() << "nothing of the expected type was thrown";
    return {};
}

} // namespace fenn::test

#endif
