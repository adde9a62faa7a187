#include "tests/accuracy/ModelFigures.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <vector>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace fenn::test
{

namespace
{

using Values = std::vector<std::vector<double>>; // one list per variable

/// Every monomial up to the degree, of the normalised variables; at most 1 in magnitude within the samples' box.
double polynomial(int degree, const std::vector<Normalizer>& normalizers, const Values& points, std::size_t i)
{
    double linear = 1.0;
    double sumOfCoefficients = 1.0;
    for (std::size_t v = 0; v < points.size(); ++v)
    {
        const double coefficient = 0.5 + static_cast<double>(v);
        linear += coefficient * normalizers[v].normalize(points[v][i]);
        sumOfCoefficients += coefficient;
    }
    double power = 1.0;
    for (int factor = 0; factor < degree; ++factor)
        power *= linear / sumOfCoefficients;
    return power;
}

Values polynomialsAt(const Values& points, int highestDegree, const std::vector<Normalizer>& normalizers)
{
    Values values;
    for (int degree = 0; degree <= highestDegree; ++degree)
    {
        values.emplace_back();
        for (std::size_t i = 0; i < points[0].size(); ++i)
            values.back().push_back(polynomial(degree, normalizers, points, i));
    }
    return values;
}

/// The targets that lie within the samples' box.
Values targetsWithin(const HardSystem& system)
{
    Values targets = system.targets;
    for (std::vector<double>& variable : targets)
        variable.pop_back();
    return targets;
}

/// Asks for every target by itself, so that one that fails spares the others, and returns the largest deviation from
/// the truth over the largest magnitude of the truth.
double worstError(const KrigingSurrogateModel& model, const Values& targets, const Values& truth,
                  std::size_t& numFailures)
{
    std::set<int> outputVars;
    for (std::size_t k = 0; k < truth.size(); ++k)
        outputVars.insert(static_cast<int>(k));
    double worst = 0.0;
    for (std::size_t t = 0; t < targets[0].size(); ++t)
    {
        Values target;
        for (const double coordinate : pointAt(targets, t))
            target.push_back({coordinate});
        try
        {
            const Values estimates = estimatesOf(model, target, outputVars);
            for (std::size_t k = 0; k < truth.size(); ++k)
            {
                const double error = std::fabs(estimates[k][0] - truth[k][t]) / largestMagnitude(truth[k]);
                worst = error <= worst ? worst : error; // a NaN counts
            }
        }
        catch (const SurrogateModelInterface::Error&)
        {
            ++numFailures;
        }
    }
    return worst;
}

} // namespace

ModelFigures measureModel(const HardSystem& system, int numNearestPoints)
{
    ModelFigures figures;
    ModelSettings settings = system.settings;
    settings.numNearestPoints = numNearestPoints;
    ModelSample sample(system.inputs, {system.outputs});
    const ModelParts parts = sample.makeParts(settings);
    const std::vector<Normalizer>& normalizers = parts.getNormalizers();

    ModelSample polynomials(system.inputs, polynomialsAt(system.inputs, settings.driftOrder, normalizers));
    const Values within = targetsWithin(system);
    figures.polynomialError = worstError(polynomials.build(settings), within,
                                         polynomialsAt(within, settings.driftOrder, normalizers), figures.numFailures);
    if (settings.nugget == 0.0)
        figures.sampleError = worstError(sample.build(settings), system.inputs, {system.outputs}, figures.numFailures);
    return figures;
}

int numNearestPointsFor(const HardSystem& system)
{
    const int numPts = static_cast<int>(system.getNumPts());
    const int numInputVars = static_cast<int>(system.inputs.size());
    const int fewest = std::max(numDriftTerms(system.settings.driftOrder, numInputVars), numInputVars) + 1;
    const int half = (fewest + numPts) / 2;
    return half > fewest && half < numPts ? half : 0;
}

} // namespace fenn::test
