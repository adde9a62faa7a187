#include "analysis/Tuning.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

#include "analysis/CrossValidation.h"
#include "analysis/FoldEstimator.h"
#include "analysis/Folds.h"
#include "analysis/NelderMead.h"
#include "estimation/Estimator.h"
#include "estimation/chooseEstimator.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"

namespace fenn::analysis
{

namespace
{

constexpr double failed = std::numeric_limits<double>::infinity();

/// Ends the search from within: the callback asked for it, or all trials are used up.
struct EndOfSearch
{
};

std::vector<ErrorStatistics> statisticsOf(const SampleSet& truths, const Estimates& estimates,
                                          const SampleSet& modelSamples)
{
    std::vector<ErrorStatistics> statistics;
    for (std::size_t w = 0; w < truths.getNumOutputVars(); ++w)
        statistics.push_back(calcErrorStatistics(truths.getOutput(w), estimates.values[w], estimates.variances,
                                                 modelSamples.calcOutputVariance(w)));
    return statistics;
}

double scoreOf(const std::vector<ErrorStatistics>& statistics, const SampleSet& tuningSamples, Objective objective)
{
    double sum = 0.0;
    for (std::size_t w = 0; w < statistics.size(); ++w)
    {
        const double deviation = std::sqrt(tuningSamples.calcOutputVariance(w));
        const double error = objective == Objective::Rmse ? statistics[w].rmse : statistics[w].mae;
        sum += deviation > 0.0 ? error / deviation : error; // an output that does not vary has no scale
    }
    const double score = sum / static_cast<double>(statistics.size());
    return std::isfinite(score) ? score : failed;
}

std::size_t enoughRepeats(std::size_t numSamples)
{
    constexpr std::size_t numEstimatesWanted = 300;
    return std::clamp<std::size_t>((numEstimatesWanted + numSamples - 1) / numSamples, 1, 3);
}

class Search
{
public:
    Search(const SampleSet& samples_, const SearchSpace& space_, const TuningOptions& options_,
           const TrialCallback& callback_, TuningResult& result_)
        : samples(samples_),
          space(space_),
          options(options_),
          callback(callback_),
          numRepeats(options_.numRepeats > 0 ? options_.numRepeats : enoughRepeats(samples_.getNumSamples())),
          coordinates(samples_, space_),
          result(result_)
    {
        for (std::size_t r = 0; r < numRepeats; ++r)
            folds.push_back(assignFolds(samples.getNumSamples(), options.numFolds, options.seed + r));
    }

    void run(const ModelSettings& start)
    {
        try
        {
            evaluate(start);
            tryGrid(start);
            tryNearestPoints();
            tryScales();
            refine();
        }
        catch (const EndOfSearch&)
        {
        }
    }

private:
    /// The penalised score of these settings, from an earlier trial if there was one.
    double evaluate(const ModelSettings& settings)
    {
        for (const Trial& trial : result.trials)
        {
            if (trial.settings == settings)
                return trial.penalisedScore;
        }
        if (result.trials.size() >= options.maxTrials)
            throw EndOfSearch();

        Trial trial{settings, failed, failed, {}};
        try
        {
            trial.score = calcScore(settings);
            if (trial.score == failed)
                trial.failure = "Estimates are not finite";
        }
        catch (const SurrogateModelInterface::Error& error)
        {
            trial.failure = error.what();
        }
        const auto numSamples = static_cast<double>(samples.getNumSamples());
        trial.penalisedScore = trial.score * std::exp(2.0 * coordinates.calcNegativeLogPrior(settings) / numSamples);

        result.trials.push_back(trial);
        const bool isNoWorseThanTheStart = trial.score <= result.trials[0].score;
        if (isNoWorseThanTheStart && trial.penalisedScore < result.trials[result.winner].penalisedScore)
            result.winner = result.trials.size() - 1;
        if (callback && !callback(trial, result.trials.size(), options.maxTrials))
        {
            result.wasCancelled = true;
            throw EndOfSearch();
        }
        return trial.penalisedScore;
    }

    double calcScore(const ModelSettings& settings) const
    {
        std::optional<FoldEstimator> global; // from one factorisation for all repeats
        if (estimation::usesAllPoints(settings, samples.getNumSamples()))
            global.emplace(samples, settings, options.estimator);
        double sum = 0.0;
        for (std::size_t r = 0; r < numRepeats; ++r)
        {
            const Estimates estimates =
                global ? global->estimate(folds[r], options.numFolds, false)
                       : crossValidate(samples, settings, options.numFolds, options.seed + r, {}, options.estimator);
            sum += scoreOf(statisticsOf(samples, estimates, samples), samples, options.objective);
        }
        return sum / static_cast<double>(numRepeats);
    }

    const ModelSettings& best() const
    {
        return result.trials[result.winner].settings;
    }

    void tryGrid(const ModelSettings& start)
    {
        std::vector<int> driftOrders = space.driftOrders;
        if (driftOrders.empty())
            driftOrders.push_back(start.driftOrder);
        for (const int driftOrder : driftOrders)
        {
            for (const double nugget : {0.0, 0.1, 0.3})
            {
                for (const double rangeFraction : {0.125, 0.25, 0.5, 1.0, 2.0})
                {
                    ModelSettings settings = start;
                    settings.driftOrder = driftOrder;
                    settings.nugget = std::clamp(nugget, space.minNugget, space.maxNugget);
                    settings.rangeFraction = std::clamp(rangeFraction, space.minRangeFraction, space.maxRangeFraction);
                    if (!space.numNearestPoints.empty())
                        settings.numNearestPoints = space.numNearestPoints[0];
                    evaluate(settings);
                }
            }
        }
    }

    void tryNearestPoints()
    {
        const ModelSettings base = best();
        for (const int numNearestPoints : space.numNearestPoints)
        {
            ModelSettings settings = base;
            settings.numNearestPoints = numNearestPoints;
            evaluate(settings);
        }
    }

    void tryScales()
    {
        ModelSettings raw;
        if (coordinates.withRawScales(best(), raw))
            evaluate(raw);
        for (std::size_t c = 2; c < coordinates.getNumCoordinates(); ++c)
        {
            for (const double step : {-1.0, 1.0})
            {
                std::vector<double> moved = coordinates.toCoordinates(best());
                moved[c] += step;
                evaluate(coordinates.toSettings(moved, best()));
            }
        }
    }

    /// From the best trial, then from the best one of another drift order or number of nearest points.
    void refine()
    {
        const std::vector<Trial> sofar = result.trials; // the list grows below
        const ModelSettings first = best();
        const Trial* second = nullptr;
        for (const Trial& trial : sofar)
        {
            const bool isAnotherKind = trial.settings.driftOrder != first.driftOrder ||
                                       trial.settings.numNearestPoints != first.numNearestPoints;
            if (isAnotherKind && trial.penalisedScore < (second == nullptr ? failed : second->penalisedScore))
                second = &trial;
        }
        const std::size_t numLeft = options.maxTrials - result.trials.size();
        refineFrom(first, second == nullptr ? numLeft : numLeft * 2 / 3);
        if (second != nullptr)
            refineFrom(second->settings, options.maxTrials);
    }

    void refineFrom(const ModelSettings& base, std::size_t maxEvaluations)
    {
        std::vector<double> steps(coordinates.getNumCoordinates(), 0.5);
        steps[1] = 0.15; // the root of the nugget
        minimise([&](const std::vector<double>& point) { return evaluate(coordinates.toSettings(point, base)); },
                 coordinates.toCoordinates(base), steps, maxEvaluations, 0.05);
    }

    const SampleSet& samples;
    const SearchSpace& space;
    const TuningOptions& options;
    const TrialCallback& callback;
    std::size_t numRepeats;
    std::vector<std::vector<std::size_t>> folds; // of each repeat
    SettingsCoordinates coordinates;
    TuningResult& result;
};

HeldOutScore scoreHeldOut(const SampleSet& tuningSamples, const SampleSet& heldOut, const ModelSettings& settings,
                          const TuningOptions& options)
{
    HeldOutScore held;
    try
    {
        const Estimates estimates =
            estimateAt(*estimation::chooseEstimator(tuningSamples, settings, options.estimator), heldOut);
        held.statistics = statisticsOf(heldOut, estimates, tuningSamples);
        held.score = scoreOf(held.statistics, tuningSamples, options.objective);
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        held.score = failed;
        held.failure = error.what();
    }
    return held;
}

} // namespace

TuningResult tune(const SampleSet& samples, const ModelSettings& start, const SearchSpace& space,
                  const TuningOptions& options, const TrialCallback& callback)
{
    checkSettings(start, samples.getNumInputVars());
    checkSearchSpace(space);
    if (!(start.rangeFraction > 0.0))
        throw std::invalid_argument("the range fraction to start from must be above 0");
    if (!(options.heldOutFraction >= 0.0 && options.heldOutFraction < 1.0))
        throw std::invalid_argument("the held-out fraction must be at least 0 and below 1");
    if (options.maxTrials == 0)
        throw std::invalid_argument("tuning needs at least one trial");

    const std::size_t numSamples = samples.getNumSamples();
    const auto numHeldOut =
        static_cast<std::size_t>(std::floor(options.heldOutFraction * static_cast<double>(numSamples)));
    std::vector<std::size_t> order = shuffledIndices(numSamples, options.seed);
    const auto firstTuning = order.begin() + static_cast<std::ptrdiff_t>(numHeldOut);
    std::sort(order.begin(), firstTuning);
    std::sort(firstTuning, order.end());

    TuningResult result;
    result.heldOutSamples.assign(order.begin(), firstTuning);
    const SampleSet tuningSamples = samples.subset({firstTuning, order.end()});
    assignFolds(tuningSamples.getNumSamples(), options.numFolds, options.seed); // refuses before the first trial
    Search(tuningSamples, space, options, callback, result).run(start);

    if (numHeldOut > 0 && !result.wasCancelled)
    {
        const SampleSet heldOut = samples.subset(result.heldOutSamples);
        result.winnerHeldOut = scoreHeldOut(tuningSamples, heldOut, result.trials[result.winner].settings, options);
        result.startHeldOut = scoreHeldOut(tuningSamples, heldOut, start, options);
    }
    return result;
}

} // namespace fenn::analysis
