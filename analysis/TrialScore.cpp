#include "analysis/TrialScore.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "analysis/CrossValidation.h"
#include "analysis/FoldEstimator.h"
#include "analysis/Folds.h"
#include "analysis/Likelihood.h"
#include "analysis/ModelPoints.h"
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

double scoreOf(const LeftOutEstimates& leftOut, const SampleSet& modelSamples, Objective objective)
{
    double sum = 0.0;
    for (std::size_t w = 0; w < leftOut.truths.size(); ++w)
    {
        double error = 0.0;
        if (objective == Objective::Rmse || objective == Objective::Mae)
        {
            const ErrorStatistics statistics =
                calcErrorStatistics(leftOut.truths[w], leftOut.estimates.values[w], {}, 1.0, 0);
            error = objective == Objective::Rmse ? statistics.rmse : statistics.mae;
        }
        else
            error = calcCalibration(leftOut.truths[w], leftOut.estimates.values[w], standardErrorsOf(leftOut, w)).crps;
        const double deviation = std::sqrt(modelSamples.calcOutputVariance(w));
        sum += deviation > 0.0 ? error / deviation : error;
    }
    const double score = sum / static_cast<double>(leftOut.truths.size());
    return std::isfinite(score) ? score : infinity;
}

Assessment assess(const LeftOutEstimates& leftOut, const SampleSet& modelSamples, Objective objective)
{
    Assessment assessment;
    assessment.score = scoreOf(leftOut, modelSamples, objective);
    for (std::size_t w = 0; w < leftOut.truths.size(); ++w)
    {
        assessment.statistics.push_back(calcErrorStatistics(leftOut.truths[w], leftOut.estimates.values[w],
                                                            leftOut.estimates.variances, leftOut.sills[w]));
        assessment.calibrations.push_back(
            calcCalibration(leftOut.truths[w], leftOut.estimates.values[w], standardErrorsOf(leftOut, w)));
    }
    return assessment;
}

TrialScorer::TrialScorer(const SampleSet& samples_, Objective objective_, std::size_t numFolds_, std::size_t numRepeats,
                         std::uint64_t seed, const EstimatorOptions& options_)
    : samples(samples_), objective(objective_), numFolds(numFolds_), options(options_)
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
    const bool wantsVariances = objective == Objective::Crps || objective == Objective::Likelihood;
    return scoreUnlessFailed([&] { return meanScoreOf(leaveOut(settings, wantsVariances)); });
}

Assessment TrialScorer::assessByCrossValidation(const ModelSettings& settings) const
{
    Assessment assessment;
    const Score score = scoreUnlessFailed(
        [&]
        {
            const std::vector<LeftOutEstimates> repeats = leaveOut(settings, true);
            assessment = assess(repeats[0], samples, objective);
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
        sum += scoreOf(leftOut, samples, objective);
    return sum / static_cast<double>(repeats.size());
}

std::vector<LeftOutEstimates> TrialScorer::leaveOut(const ModelSettings& settings, bool wantsVariances) const
{
    std::vector<LeftOutEstimates> repeats;
    if (isGlobal(settings))
        repeats = leaveOutGlobally(settings, wantsVariances);
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

std::vector<LeftOutEstimates> TrialScorer::leaveOutGlobally(const ModelSettings& settings, bool wantsVariances) const
{
    const FoldEstimator estimator(samples, settings, options);
    if (!estimator.isWellConditioned())
        throw SurrogateModelInterface::Error(cannotBeToldApart);
    const std::vector<double> sills = wantsVariances ? estimator.calcSills() : std::vector<double>();
    std::vector<LeftOutEstimates> repeats;
    for (const std::uint64_t seed : seeds)
    {
        const std::vector<std::size_t> folds = assignFolds(samples.getNumSamples(), numFolds, seed);
        repeats.push_back({outputsOf(samples), estimator.estimate(folds, numFolds, wantsVariances), sills});
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
    estimation::Results where;
    for (std::vector<double>& column : values)
        where.estimates.push_back(column.data());
    where.variances = variances.data();
    LeftOutEstimates leftOut;
    leftOut.truths.resize(truths.size());
    leftOut.estimates.values.resize(truths.size());
    for (const std::size_t p : chosen)
    {
        estimator.estimateWithoutEach(p, 1, where);
        leftOut.estimates.variances.push_back(variances[p]);
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
