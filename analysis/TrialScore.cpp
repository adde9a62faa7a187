#include "analysis/TrialScore.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "analysis/CrossValidation.h"
#include "analysis/FoldEstimator.h"
#include "analysis/Folds.h"
#include "analysis/Likelihood.h"
#include "analysis/ModelPoints.h"
#include "analysis/Places.h"
#include "estimation/LocalEstimator.h"
#include "estimation/makeModelParts.h"
#include "estimation/makeSystemInverse.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace fenn::analysis
{

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

// Of a sill of 1. Below it, a variance is a repeated point's or a rounding error; below minus that, no variance.
constexpr double smallestVariance = 1e-12;

constexpr std::uint64_t choiceSeed = 1; // of the points that are left out

constexpr const char* cannotBeToldApart = "Points cannot be told apart";
constexpr const char* isNotValid = "The semivariogram is not valid for these inputs";

std::size_t enoughRepeats(std::size_t numSamples)
{
    constexpr std::size_t numEstimatesWanted = 300;
    return std::clamp<std::size_t>((numEstimatesWanted + numSamples - 1) / numSamples, 1, 3);
}

std::vector<std::vector<double>> outputsOf(const SampleSet& samples)
{
    std::vector<std::vector<double>> outputs;
    for (std::size_t w = 0; w < samples.getNumOutputVars(); ++w)
        outputs.push_back(samples.getOutput(w));
    return outputs;
}

std::vector<double> exponentialsOf(const std::vector<double>& logarithms)
{
    std::vector<double> values;
    values.reserve(logarithms.size());
    for (const double logarithm : logarithms)
        values.push_back(std::exp(logarithm));
    return values;
}

/// Sample variance of an output's values of which the samples hold logarithms.
double varianceOfExponentials(const SampleSet& samples, std::size_t output)
{
    std::vector<double> values = exponentialsOf(samples.getOutput(output));
    std::vector<double> places(values.size()); // any
    return SampleSet({std::move(places)}, {std::move(values)}).calcOutputVariance(0);
}

std::vector<double> standardErrorsOf(const LeftOutEstimates& leftOut, std::size_t output)
{
    std::vector<double> standardErrors;
    for (const double variance : leftOut.estimates.variances)
        standardErrors.push_back(std::sqrt(std::max(variance, 0.0) * leftOut.sills[output]));
    return standardErrors;
}

/// Per output variable the mean of e^2 / v: the sill that the errors e speak for, v being variances for a sill of 1.
std::vector<double> sillsOfErrors(const LeftOutEstimates& leftOut)
{
    std::vector<double> sills;
    const std::vector<double>& variances = leftOut.estimates.variances;
    for (std::size_t w = 0; w < leftOut.truths.size(); ++w)
    {
        double sum = 0.0;
        std::size_t numUsed = 0;
        for (std::size_t i = 0; i < variances.size(); ++i)
        {
            const double error = leftOut.estimates.values[w][i] - leftOut.truths[w][i];
            if (!(variances[i] > smallestVariance) || std::isnan(error))
                continue;
            sum += error * error / variances[i];
            ++numUsed;
        }
        sills.push_back(numUsed > 0 ? sum / static_cast<double>(numUsed) : 0.0);
    }
    return sills;
}

/// Of estimates and truths in the data's units; standardised errors are those of the model, where there are any.
ErrorStatistics errorsInUnits(const LeftOutEstimates& leftOut, std::size_t output, const OutputUnits& units)
{
    const std::vector<double>& truths = leftOut.truths[output];
    const std::vector<double>& values = leftOut.estimates.values[output];
    const std::vector<double>& variances = leftOut.estimates.variances;
    const double sill = leftOut.sills.empty() ? 1.0 : leftOut.sills[output];
    ErrorStatistics ofModel = calcErrorStatistics(truths, values, variances, sill);
    if (units == OutputUnits())
        return ofModel;
    std::vector<double> inUnits;
    for (std::size_t i = 0; i < values.size(); ++i)
        inUnits.push_back(units.areLogarithms
                              ? units.estimateOf(values[i], variances[i], leftOut.estimates.driftProducts[i], sill)
                              : units.estimateOf(values[i], 0.0, 0.0, sill));
    ErrorStatistics statistics =
        calcErrorStatistics(units.areLogarithms ? exponentialsOf(truths) : truths, inUnits, {}, 1.0);
    statistics.meanSquaredStandardisedError = ofModel.meanSquaredStandardisedError;
    statistics.numWithoutVariance = ofModel.numWithoutVariance;
    return statistics;
}

double meanCrpsOfLogarithms(const LeftOutEstimates& leftOut, std::size_t output)
{
    const std::vector<double> standardErrors = standardErrorsOf(leftOut, output);
    const std::vector<double>& truths = leftOut.truths[output];
    double sum = 0.0;
    for (std::size_t i = 0; i < truths.size(); ++i)
        sum += crpsOfLogarithm(truths[i], leftOut.estimates.values[output][i], standardErrors[i]);
    return sum / static_cast<double>(truths.size());
}

/// What work returns, or what it throws as the reason of the failure.
template <typename Work>
TrialScorer::Score scoreUnlessFailed(const Work& work)
{
    TrialScorer::Score score{infinity, {}};
    try
    {
        score.value = work();
        if (!std::isfinite(score.value))
            score = {infinity, "Estimates are not finite"};
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        score.failure = error.what();
    }
    return score;
}

} // namespace

double scoreOf(const LeftOutEstimates& leftOut, const SampleSet& modelSamples, Objective objective,
               const OutputUnits& units)
{
    const bool areLogarithms = units.areLogarithms && objective != Objective::Likelihood;
    double sum = 0.0;
    for (std::size_t w = 0; w < leftOut.truths.size(); ++w)
    {
        double error = 0.0;
        if (objective == Objective::Rmse || objective == Objective::Mae)
        {
            const ErrorStatistics statistics = errorsInUnits(leftOut, w, units);
            error = objective == Objective::Rmse ? statistics.rmse : statistics.mae;
        }
        else if (areLogarithms)
            error = meanCrpsOfLogarithms(leftOut, w);
        else
            error = calcCalibration(leftOut.truths[w], leftOut.estimates.values[w], standardErrorsOf(leftOut, w)).crps;
        const double deviation =
            std::sqrt(areLogarithms ? varianceOfExponentials(modelSamples, w) : modelSamples.calcOutputVariance(w));
        sum += deviation > 0.0 ? error / deviation : error;
    }
    const double score = sum / static_cast<double>(leftOut.truths.size());
    return std::isfinite(score) ? score : infinity;
}

Assessment assess(const LeftOutEstimates& leftOut, const SampleSet& modelSamples, Objective objective,
                  const OutputUnits& units)
{
    Assessment assessment;
    assessment.score = scoreOf(leftOut, modelSamples, objective, units);
    for (std::size_t w = 0; w < leftOut.truths.size(); ++w)
    {
        assessment.statistics.push_back(errorsInUnits(leftOut, w, units));
        assessment.calibrations.push_back(
            calcCalibration(leftOut.truths[w], leftOut.estimates.values[w], standardErrorsOf(leftOut, w)));
    }
    return assessment;
}

TrialScorer::TrialScorer(const SampleSet& samples_, Objective objective_, std::size_t numFolds_, std::size_t numRepeats,
                         std::uint64_t seed, const EstimatorOptions& options_, const OutputUnits& units_)
    : samples(samples_), objective(objective_), numFolds(numFolds_), options(options_), units(units_)
{
    const std::size_t numSamples = samples.getNumSamples();
    assignFolds(numSamples, numFolds, seed); // refuses before the first trial
    for (std::size_t r = 0; r < (numRepeats > 0 ? numRepeats : enoughRepeats(numSamples)); ++r)
        seeds.push_back(seed + r);
}

bool TrialScorer::isGlobal(const ModelSettings& settings) const
{
    return estimation::usesAllPoints(settings, samples.getNumSamples());
}

TrialScorer::Score TrialScorer::calcDeviance(const ModelSettings& settings) const
{
    std::string failure;
    Score score = scoreUnlessFailed(
        [&]
        {
            const auto parts = estimation::makeModelParts(samples, settings);
            const auto system = estimation::makeSystemInverse(*parts, settings.driftOrder, options);
            const RestrictedLikelihood likelihood = calcRestrictedLikelihood(*parts, *system, settings.driftOrder);
            failure = likelihood.failure;
            return likelihood.calcSum();
        });
    if (!failure.empty())
        score.failure = failure;
    return score;
}

TrialScorer::Score TrialScorer::crossValidate(const ModelSettings& settings) const
{
    estimation::WantedBeside wanted;
    wanted.variances = units.areLogarithms || objective == Objective::Crps || objective == Objective::Likelihood;
    wanted.driftProducts = units.areLogarithms && (objective == Objective::Rmse || objective == Objective::Mae);
    return scoreUnlessFailed([&] { return meanScoreOf(leaveOut(settings, wanted)); });
}

Assessment TrialScorer::assessByCrossValidation(const ModelSettings& settings) const
{
    Assessment assessment;
    const Score score = scoreUnlessFailed(
        [&]
        {
            const std::vector<LeftOutEstimates> repeats = leaveOut(settings, {true, units.areLogarithms});
            assessment = assess(repeats[0], samples, objective, units);
            return meanScoreOf(repeats);
        });
    assessment.score = score.value;
    assessment.failure = score.failure;
    if (!score.failure.empty())
        assessment.statistics.clear();
    return assessment;
}

double TrialScorer::meanScoreOf(const std::vector<LeftOutEstimates>& repeats) const
{
    double sum = 0.0;
    for (const LeftOutEstimates& leftOut : repeats)
        sum += scoreOf(leftOut, samples, objective, units);
    return sum / static_cast<double>(repeats.size());
}

std::vector<LeftOutEstimates> TrialScorer::leaveOut(const ModelSettings& settings,
                                                    const estimation::WantedBeside& wanted) const
{
    std::vector<LeftOutEstimates> repeats;
    if (isGlobal(settings))
        repeats = leaveOutGlobally(settings, wanted);
    else if (samples.getNumSamples() > maxFoldSamples)
        repeats.push_back(leaveOutEachOfSome(settings));
    else
    {
        for (const std::uint64_t seed : seeds)
            repeats.push_back(leaveOutFolds(settings, seed));
    }
    for (const LeftOutEstimates& leftOut : repeats)
    {
        const std::vector<double>& variances = leftOut.estimates.variances;
        if (std::any_of(variances.begin(), variances.end(), [](double v) { return v < -smallestVariance; }))
            throw SurrogateModelInterface::Error(isNotValid);
    }
    return repeats;
}

std::vector<LeftOutEstimates> TrialScorer::leaveOutGlobally(const ModelSettings& settings,
                                                            const estimation::WantedBeside& wanted) const
{
    const FoldEstimator estimator(samples, settings, options);
    if (!estimator.isWellConditioned())
        throw SurrogateModelInterface::Error(cannotBeToldApart);
    const std::vector<double> sills = wanted.variances ? estimator.calcSills() : std::vector<double>();
    std::vector<LeftOutEstimates> repeats;
    for (const std::uint64_t seed : seeds)
    {
        const std::vector<std::size_t> folds =
            assignFoldsToPlaces(samples, settings.duplicateTolerance, numFolds, seed);
        repeats.push_back({outputsOf(samples), estimator.estimate(folds, numFolds, wanted), sills});
    }
    return repeats;
}

LeftOutEstimates TrialScorer::leaveOutFolds(const ModelSettings& settings, std::uint64_t seed) const
{
    LeftOutEstimates leftOut{
        outputsOf(samples), analysis::crossValidate(samples, settings, numFolds, seed, {}, options), {}};
    leftOut.sills = sillsOfErrors(leftOut);
    return leftOut;
}

LeftOutEstimates TrialScorer::leaveOutEachOfSome(const ModelSettings& settings) const
{
    const auto parts = estimation::makeModelParts(samples, settings);
    const estimation::LocalEstimator estimator(parts, settings.driftOrder, settings.numNearestPoints,
                                               options.numThreads);
    const std::size_t numPoints = parts->getPoints().size();
    std::vector<std::size_t> chosen = shuffledIndices(numPoints, choiceSeed);
    chosen.resize(std::min(numPoints, maxLeftOut));
    std::sort(chosen.begin(), chosen.end());

    const std::vector<std::vector<double>> truths = outputsOfPoints(*parts);
    std::vector<std::vector<double>> values(truths.size(), std::vector<double>(numPoints));
    std::vector<double> variances(numPoints);
    std::vector<double> driftProducts(numPoints);
    estimation::Results where;
    for (std::vector<double>& column : values)
        where.estimates.push_back(column.data());
    where.variances = variances.data();
    where.driftProducts = driftProducts.data();
    LeftOutEstimates leftOut;
    leftOut.truths.resize(truths.size());
    leftOut.estimates.values.resize(truths.size());
    for (const std::size_t p : chosen)
    {
        estimator.estimateWithoutEach(p, 1, where);
        leftOut.estimates.variances.push_back(variances[p]);
        leftOut.estimates.driftProducts.push_back(driftProducts[p]);
        for (std::size_t w = 0; w < truths.size(); ++w)
        {
            leftOut.truths[w].push_back(truths[w][p]);
            leftOut.estimates.values[w].push_back(values[w][p]);
        }
    }
    leftOut.sills = sillsOfErrors(leftOut);
    return leftOut;
}

} // namespace fenn::analysis
