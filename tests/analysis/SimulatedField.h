#ifndef FENN_TESTS_ANALYSIS_SIMULATEDFIELD_H
#define FENN_TESTS_ANALYSIS_SIMULATEDFIELD_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "analysis/NormalDistribution.h"
#include "estimation/ModelSettings.h"
#include "estimation/SampleSet.h"
#include "estimation/makeModelParts.h"
#include "tests/estimation/DenseKriging.h"
#include "tests/support/Samples.h"

namespace fenn::test
{

/// Normal numbers of mean 0 and variance 1.
inline std::vector<double> normalNumbers(std::size_t count, std::uint64_t seed)
{
    RandomNumbers numbers(seed);
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i)
        values.push_back(analysis::normalQuantile(numbers.next(0x1p-54, 1.0)));
    return values;
}

/// Observations, at these places, of a Gaussian field whose covariances are those of a model of these settings times
/// the sill: correlated numbers by Cholesky's factor. One output.
inline estimation::SampleSet simulatedField(std::vector<std::vector<double>> inputs,
                                            const estimation::ModelSettings& settings, double sill, double mean,
                                            std::uint64_t seed)
{
    const std::size_t n = inputs[0].size();
    const estimation::SampleSet places(inputs, {std::vector<double>(n, 0.0)});
    DenseMatrix c = DenseKriging(*estimation::makeModelParts(places, settings), settings).covariances();
    const std::vector<double> independent = normalNumbers(n, seed);
    std::vector<double> field(n, mean);
    for (std::size_t j = 0; j < n; ++j)
    {
        for (std::size_t i = j; i < n; ++i)
        {
            for (std::size_t k = 0; k < j; ++k)
                c(i, j) -= c(i, k) * c(j, k);
        }
        const long double root = std::sqrt(c(j, j));
        for (std::size_t i = j; i < n; ++i)
        {
            c(i, j) /= root;
            field[i] += std::sqrt(sill) * static_cast<double>(c(i, j)) * independent[j];
        }
    }
    return {std::move(inputs), {std::move(field)}};
}

} // namespace fenn::test

#endif
