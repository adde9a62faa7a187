// The covariance form of estimation/: estimates, variances and the bound that it proves, on several threads too.

#include <memory>
#include <stdexcept>
#include <string>

#include "DigestCases.h"
#include "estimation/CovarianceEstimator.h"
#include "estimation/makeModelParts.h"
#include "tests/support/Samples.h"

namespace fenn::test
{
namespace
{

using estimation::CovarianceEstimator;
using estimation::ModelSettings;
using estimation::SampleSet;

/// Outputs by multiplication alone: the same numbers everywhere.
SampleSet makeSamples(std::size_t numInputVars, std::size_t numSamples, std::size_t numOutputs, std::uint64_t seed)
{
    std::vector<std::vector<double>> inputs = randomValues(numInputVars, numSamples, -5.0, 20.0, seed);
    std::vector<std::vector<double>> outputs(numOutputs, std::vector<double>(numSamples));
    for (std::size_t o = 0; o < numOutputs; ++o)
    {
        for (std::size_t i = 0; i < numSamples; ++i)
        {
            double value = 1.0;
            for (std::size_t v = 0; v < numInputVars; ++v)
                value = value * 0.5 + inputs[v][i] * (inputs[v][i] - 3.0 - static_cast<double>(o));
            outputs[o][i] = static_cast<double>(o) * 1e6 + value;
        }
    }
    return {std::move(inputs), std::move(outputs)};
}

/// Some targets lie on a sample, some far away.
std::vector<std::vector<double>> targetsFor(const SampleSet& samples, std::size_t numTargets, std::uint64_t seed)
{
    std::vector<std::vector<double>> targets =
        randomValues(samples.getNumInputVars(), numTargets, -6.0, 21.0, seed + 1000);
    for (std::size_t t = 0; t < numTargets; t += 7)
    {
        for (std::size_t v = 0; v < targets.size(); ++v)
            targets[v][t] = samples.getInput(v)[t % samples.getNumSamples()];
    }
    for (std::size_t t = 29; t < numTargets; t += 50)
        targets[0][t] = 300.0;
    return targets;
}

/// Estimates, with and without variances, variances and bound; a refusal's reason instead.
std::uint64_t digestOf(const SampleSet& samples, const ModelSettings& settings, std::size_t numTargets,
                       std::uint64_t seed, int numThreads)
{
    Digest digest;
    std::string reason;
    const auto estimator =
        CovarianceEstimator::makeWhereProven(makeModelParts(samples, settings), settings, numThreads, reason);
    if (!estimator)
    {
        digest.add(reason);
        return digest.value();
    }
    const std::vector<std::vector<double>> targets = targetsFor(samples, numTargets, seed);
    std::vector<const double*> coords;
    for (const std::vector<double>& column : targets)
        coords.push_back(column.data());
    ValueArrays values(samples.getNumOutputVars(), numTargets);
    std::vector<double> variances(numTargets);
    for (double* variancesOrNot : {static_cast<double*>(nullptr), variances.data()})
    {
        estimator->estimate({coords, numTargets}, {values.arrays(), variancesOrNot});
        for (std::size_t o = 0; o < values.getNumVars(); ++o)
            digest.add(values[o]);
    }
    digest.add(variances);
    digest.add(estimator->getReport().bound);
    return digest.value();
}

void covarianceForms(Digest& digest)
{
    std::uint64_t seed = 2000;
    for (std::size_t numInputVars = 1; numInputVars <= 4; ++numInputVars)
    {
        for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
        {
            for (const double rangeFraction : {0.1, 1.2})
            {
                const double nugget = ++seed % 2 == 0 ? 0.0 : 0.1;
                const ModelSettings settings{-1.0, {}, driftOrder, rangeFraction, nugget, 0};
                digest.add(
                    digestOf(makeSamples(numInputVars, 90 + seed % 40, 1 + seed % 3, seed), settings, 70, seed, 1));
            }
        }
    }
}

void covarianceFormsOfEverySize(Digest& digest)
{
    for (std::size_t numSamples = 4; numSamples <= 100; ++numSamples)
        digest.add(digestOf(makeSamples(2, numSamples, 1, numSamples), {0.01, {}, 0, 0.7, 0.05, 0}, numSamples % 19 + 1,
                            numSamples, 1));
}

void covarianceFormsOnThreads(Digest& digest)
{
    const SampleSet samples = makeSamples(2, 700, 10, 2200);
    for (const double rangeFraction : {0.1, 1.0})
    {
        const ModelSettings settings{-1.0, {}, 2, rangeFraction, 0.02, 0};
        const std::uint64_t single = digestOf(samples, settings, 600, 2201, 1);
        for (const int numThreads : {2, 3, 7})
        {
            if (digestOf(samples, settings, 600, 2201, numThreads) != single)
                throw std::runtime_error(std::to_string(numThreads) + " threads gave other bits than one");
        }
        digest.add(single);
    }
}

/// Coincident samples, a hair apart, too few for the drift: which of them are refused is the same everywhere.
void refusedCovarianceForms(Digest& digest)
{
    for (const double distance : {0.0, 1e-12, 1e-9, 1e-6, 1e-3})
    {
        for (const double nugget : {0.0, 0.01})
        {
            std::vector<std::vector<double>> inputs = randomValues(2, 60, 0.0, 1.0, 2300);
            inputs[0][41] = inputs[0][7] + distance;
            inputs[1][41] = inputs[1][7];
            const SampleSet samples(std::move(inputs), randomValues(1, 60, 0.0, 1.0, 2301));
            digest.add(digestOf(samples, {-1.0, {}, 1, 1.0, nugget, 0}, 20, 2302, 1));
        }
    }
    digest.add(digestOf(makeSamples(2, 10, 1, 2303), {-1.0, {}, 3, 1.0, 0.0, 0}, 20, 2303, 1));
}

} // namespace

std::vector<DigestCase> covarianceEngineCases()
{
    return {{"covariance-forms", covarianceForms},
            {"covariance-forms-of-every-size", covarianceFormsOfEverySize},
            {"covariance-forms-on-threads", covarianceFormsOnThreads},
            {"refused-covariance-forms", refusedCovarianceForms}};
}

} // namespace fenn::test
