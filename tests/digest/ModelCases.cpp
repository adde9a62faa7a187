// Whole models: estimates through the interface, estimates with variances through the controller behind it.

#include <limits>
#include <memory>
#include <stdexcept>
#include <string>

#include "DigestCases.h"
#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/support/ModelAccess.h"
#include "tests/support/Samples.h"

namespace fenn::test
{
namespace
{

constexpr double notWritten = -99.0;

struct Settings
{
    int numInputVars = 2;
    int numPts = 100;
    int driftOrder = 0;
    double rangeFraction = 0.8;
    double nugget = 0.05;
    int numNearestPoints = 0;
    double duplicateTolerance = -1.0;
    std::vector<double> scaleFactors{};
};

/// Samples of a smooth function and, far from zero, of its square, and a model over them. A tenth of the samples lies
/// where another one does.
class SampledModel
{
public:
    SampledModel(const Settings& settings_, std::uint64_t seed)
        : settings(settings_),
          inputs(randomValues(static_cast<std::size_t>(settings.numInputVars),
                              static_cast<std::size_t>(settings.numPts), -5.0, 20.0, seed)),
          outputs(2, static_cast<std::size_t>(settings.numPts))
    {
        for (std::size_t i = 0; i < outputs[0].size(); ++i)
        {
            double value = 1.0;
            for (std::size_t v = 0; v < inputs.getNumVars(); ++v)
            {
                if (i % 10 == 9 && settings.duplicateTolerance >= 0.0)
                    inputs[v][i] = inputs[v][i / 2];
                value = value * 0.5 + inputs[v][i] * (inputs[v][i] - 3.0);
            }
            outputs[0][i] = value;
            outputs[1][i] = 1e6 + value * value;
        }
        model = std::make_unique<KrigingSurrogateModel>(
            inputs.arrays(), outputs.arrays(), settings.numPts, settings.duplicateTolerance, settings.scaleFactors,
            settings.driftOrder, settings.rangeFraction, settings.nugget, settings.numNearestPoints);
        model->activateDependentVariables(both);
    }

    const Settings settings;
    const std::set<int> both{0, 1};
    ValueArrays inputs;
    ValueArrays outputs;
    std::unique_ptr<KrigingSurrogateModel> model;
};

/// Random targets; some lie on a sample, some have a coordinate that is NaN or far away.
std::vector<std::vector<double>> targetsFor(const SampledModel& sampled, int numTargets, std::uint64_t seed)
{
    const auto count = static_cast<std::size_t>(numTargets);
    std::vector<std::vector<double>> targets = randomValues(sampled.inputs.getNumVars(), count, -6.0, 21.0, seed);
    for (std::size_t t = 0; t < count; t += 40)
    {
        for (std::size_t v = 0; v < targets.size(); ++v)
            targets[v][t] = sampled.inputs[v][t % sampled.inputs[v].size()];
    }
    for (std::size_t t = 17; t < count; t += 50)
        targets[0][t] = std::numeric_limits<double>::quiet_NaN();
    for (std::size_t t = 29; t < count; t += 50)
        targets[0][t] = 1e5;
    return targets;
}

/// What a request gave, from its answers or from its failure; entries that it did not write keep their mark.
struct Answers
{
    explicit Answers(std::size_t numTargets)
        : values(std::vector<std::vector<double>>(2, std::vector<double>(numTargets, notWritten))),
          variances(std::vector<std::vector<double>>(2, std::vector<double>(numTargets, notWritten)))
    {
    }

    std::uint64_t digest() const
    {
        Digest result;
        for (std::size_t output = 0; output < 2; ++output)
        {
            result.add(values[output]);
            result.add(variances[output]);
        }
        result.add(failure);
        return result.value();
    }

    ValueArrays values;
    ValueArrays variances;
    std::string failure;
};

std::uint64_t askController(KrigingControllerAbstract& controller, const SampledModel& sampled, ValueArrays& targets,
                            int numTargets)
{
    Answers answers(static_cast<std::size_t>(numTargets));
    controller.setOutputVars(sampled.both);
    try
    {
        controller.interpolate(targets.arrays(), sampled.both, numTargets, answers.values.arrays(),
                               answers.variances.arrays());
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        answers.failure = error.what();
    }
    return answers.digest();
}

std::uint64_t askModel(const SampledModel& sampled, ValueArrays& targets, int numTargets)
{
    Answers answers(static_cast<std::size_t>(numTargets));
    sampled.model->interpolateDependentValues(targets.arrays(), sampled.both, answers.values.arrays(),
                                              static_cast<std::size_t>(numTargets));
    return answers.digest();
}

void addModel(Digest& digest, const Settings& settings, int numTargets, std::uint64_t seed)
{
    const SampledModel sampled(settings, seed);
    ValueArrays targets(targetsFor(sampled, numTargets, seed + 1000));
    digest.add(askModel(sampled, targets, numTargets));
    digest.add(askController(fenn::ModelAccess::getController(*sampled.model), sampled, targets, numTargets));
}

/// The samples of a global model under a pool of maxThreads threads.
std::uint64_t askPoolOf(int maxThreads, const SampledModel& sampled, ValueArrays& targets, int numTargets)
{
    const std::vector<double>& low = fenn::ModelAccess::getMinValues(*sampled.model);
    const std::vector<double>& high = fenn::ModelAccess::getMaxValues(*sampled.model);
    SphericalSemivariogram semivariogram(low, fenn::ModelAccess::getNormalizers(*sampled.model), low, high,
                                         sampled.settings.rangeFraction, sampled.settings.nugget);
    AllPtsKrigingController controller(&fenn::ModelAccess::getDataBlock(*sampled.model), &semivariogram,
                                       sampled.settings.driftOrder, maxThreads);
    return askController(controller, sampled, targets, numTargets);
}

void oneThreadAndMany(Digest& digest, const Settings& settings, int numTargets, std::uint64_t seed)
{
    const SampledModel sampled(settings, seed);
    ValueArrays targets(targetsFor(sampled, numTargets, seed + 1000));
    const std::uint64_t single = askPoolOf(1, sampled, targets, numTargets);
    for (const int maxThreads : {2, 3, 7, 16})
    {
        if (askPoolOf(maxThreads, sampled, targets, numTargets) != single)
            throw std::runtime_error(std::to_string(maxThreads) + " threads gave other bits than one");
    }
    digest.add(single);
}

void globalModels(Digest& digest)
{
    std::uint64_t seed = 100;
    for (const int numInputVars : {1, 2, 3})
    {
        for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
            addModel(digest, {numInputVars, 90 + 13 * driftOrder, driftOrder}, 120, ++seed);
    }
    addModel(digest, {5, 150, 1, 1.5, 0.0}, 60, ++seed);
    addModel(digest, {10, 80, 0, 0.5, 0.2}, 60, ++seed);
}

void everyNumberOfTargets(Digest& digest)
{
    for (int numTargets = 0; numTargets <= 70; ++numTargets)
        addModel(digest, {2, 37, numTargets % 3}, numTargets, 200 + static_cast<std::uint64_t>(numTargets));
    addModel(digest, {2, 65, 1}, 517, 299);
}

void largeGlobalModels(Digest& digest)
{
    addModel(digest, {2, 600, 2}, 150, 301);
    addModel(digest, {3, 500, 1, 1.0, 0.0}, 131, 302);
}

void globalModelsOfMergedSamples(Digest& digest)
{
    for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
    {
        const auto seed = static_cast<std::uint64_t>(400 + driftOrder);
        addModel(digest, {2, 150, driftOrder, 0.6, 0.01, 0, 0.0, {2.0, 0.5}}, 80, seed);
        addModel(digest, {2, 150, driftOrder, 0.6, 0.01, 0, 0.003, {-1.0, -2.0}}, 80, seed);
    }
}

void threads(Digest& digest)
{
    oneThreadAndMany(digest, {2, 61, 0}, 100, 501);
    oneThreadAndMany(digest, {2, 260, 2}, 203, 502);
    oneThreadAndMany(digest, {3, 140, 3}, 33, 503);
    oneThreadAndMany(digest, {2, 530, 1, 0.8, 0.0}, 41, 504);
}

/// Two samples coincide: with a linear drift a target far away overflows, those before it have been answered.
void overflowingTargets(Digest& digest)
{
    for (const int failing : {0, 1, 7, 8, 30, 63, 64, 99})
    {
        for (const int numNearestPoints : {0, 12})
        {
            const auto seed = static_cast<std::uint64_t>(600 + failing);
            SampledModel sampled({2, 40, 1, 0.8, 0.0, numNearestPoints, -1.0, {1.0, 1.0}}, seed);
            for (std::size_t v = 0; v < 2; ++v)
                sampled.inputs[v][39] = sampled.inputs[v][38];
            ValueArrays targets(randomValues(2, 100, -6.0, 21.0, seed));
            targets[0][static_cast<std::size_t>(failing)] = 1e160;
            if (numNearestPoints == 0)
                digest.add(askPoolOf(1, sampled, targets, 100));
            else
                digest.add(askController(fenn::ModelAccess::getController(*sampled.model), sampled, targets, 100));
        }
    }
}

void localModels(Digest& digest)
{
    std::uint64_t seed = 700;
    for (const int numInputVars : {1, 2, 3})
    {
        for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
        {
            for (const int numNearestPoints : {20, 37}) // 19 and 34 drift terms at most
            {
                if (driftOrder < 4 || numNearestPoints == 37)
                    addModel(digest, {numInputVars, 400, driftOrder, 0.5, 0.02, numNearestPoints}, 60, ++seed);
            }
        }
    }
    for (int numNearestPoints = 3; numNearestPoints <= 70; ++numNearestPoints)
        addModel(digest, {2, 200, 0, 0.5, 0.02, numNearestPoints}, 12, ++seed);
    addModel(digest, {2, 5000, 1, 0.4, 0.02, 32}, 60, ++seed);
}

void localModelsOfMergedSamples(Digest& digest)
{
    for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
    {
        const auto seed = static_cast<std::uint64_t>(900 + driftOrder);
        addModel(digest, {2, 500, driftOrder, 0.6, 0.01, 24, 0.0, {}}, 60, seed);
        addModel(digest, {2, 500, driftOrder, 0.6, 0.01, 24, 0.002, {1.0, 3.0}}, 60, seed);
    }
}

} // namespace

std::vector<DigestCase> modelCases()
{
    return {{"global-models", globalModels},
            {"every-number-of-targets", everyNumberOfTargets},
            {"large-global-models", largeGlobalModels},
            {"global-models-of-merged-samples", globalModelsOfMergedSamples},
            {"threads", threads},
            {"overflowing-targets", overflowingTargets},
            {"local-models", localModels},
            {"local-models-of-merged-samples", localModelsOfMergedSamples}};
}

} // namespace fenn::test
