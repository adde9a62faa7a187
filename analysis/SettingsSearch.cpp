#include "analysis/SettingsSearch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "analysis/NelderMead.h"
#include "analysis/TrialScore.h"
#include "estimation/ModelSettings.h"

namespace fenn::analysis
{

namespace
{

constexpr double failed = std::numeric_limits<double>::infinity();
constexpr std::size_t none = static_cast<std::size_t>(-1);

// The coarse grid: nuggets, and so many range fractions in even ratios from the shortest one on.
constexpr std::array gridNuggets{0.0, 0.1, 0.3, 0.6, 0.9};
constexpr std::size_t numGridRanges = 5;
constexpr double longestGridRange = 2.0;

// The anisotropies that are tried first: powers of 2 as ratios, and angles in radians.
constexpr std::array gridLog2Ratios{1.0, 2.0};
constexpr std::array gridAngles{0.0, 0.7853981633974483, 1.5707963267948966, 2.356194490192345};
constexpr std::size_t ratioAndAngle = 2;

// Of the simplex method: its first steps, and the part of them at which it stops.
constexpr double rangeStep = 0.5;   // log2, also of ratios of ranges
constexpr double nuggetStep = 0.15; // of the root
constexpr double tolerance = 0.05;

// A higher drift order, and nearest points instead of all, must lower the cross-validated score to this part of what it
// is without. With 100 to 150 samples the orders' scores differ by up to 3 % by chance: of the soil data in
// docs/tuning.md, models of order 1 and 2 that were 1 to 3 % better in cross-validation erred by up to 13 % more at
// samples left out.
constexpr double worthwhile = 0.95;

/// Ends the search from within: the callback asked for it, or all trials are used up.
struct EndOfSearch
{
};

std::size_t distanceBetween(std::size_t a, std::size_t b)
{
    return a > b ? a - b : b - a;
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
          scorer(makeScorer(samples_, options_)),
          coordinates(samples_, space_),
          numSamples(static_cast<double>(samples_.getNumSamples())),
          result(result_)
    {
        if (space.maxRatio > 1.0)
            anisotropyCoordinates.emplace(samples, space);
    }

    void run(const ModelSettings& start)
    {
        std::vector<int> driftOrders = space.driftOrders;
        if (driftOrders.empty())
            driftOrders.push_back(start.driftOrder);
        ModelSettings firstBase = start;
        if (searchesAnisotropy())
            firstBase.scaleFactors.assign(samples.getNumInputVars(), 1.0);
        try
        {
            beginKind();
            evaluate({start, {}});
            bool isStartSearched = false;
            for (std::size_t k = 0; k < driftOrders.size(); ++k)
            {
                ModelSettings base = firstBase;
                base.driftOrder = driftOrders[k];
                if (!space.numNearestPoints.empty())
                    base.numNearestPoints = space.numNearestPoints[0];
                beginKind();
                if (isOfOneKind(base, start))
                {
                    evaluate({start, {}});
                    isStartSearched = true;
                }
                // The last share is left for scales and numbers of nearest points.
                const std::size_t share = (options.maxTrials - result.trials.size()) / (driftOrders.size() - k + 1);
                searchKind(base, result.trials.size() + share);
                endKind();
            }
            if (!isStartSearched)
            {
                beginKind();
                evaluate({start, {}});
                endKind();
            }
            if (searchesAnisotropy())
                refineAnisotropy();
            else
                refineScales();
            tryNearestPoints();
        }
        catch (const EndOfSearch&)
        {
            if (!result.wasCancelled)
                endKind();
        }
    }

private:
    bool searchesAnisotropy() const
    {
        return anisotropyCoordinates.has_value();
    }

    /// What a scorer of the samples says, after they are rotated and stretched where there is an anisotropy.
    template <typename Ask>
    TrialScorer::Score withScorer(const std::optional<Anisotropy>& anisotropy, const Ask& ask) const
    {
        if (!anisotropy)
            return ask(scorer);
        const SampleSet turned = anisotropy->apply(samples);
        return ask(makeScorer(turned, options));
    }

    TrialScorer::Score calcDeviance(const SettingsWithAnisotropy& tried) const
    {
        return withScorer(tried.anisotropy,
                          [&](const TrialScorer& turned) { return turned.calcDeviance(tried.settings); });
    }

    TrialScorer::Score crossValidate(const SettingsWithAnisotropy& tried) const
    {
        return withScorer(tried.anisotropy,
                          [&](const TrialScorer& turned) { return turned.crossValidate(tried.settings); });
    }

    /// The number of the trial of these settings, which is made unless there was one.
    std::size_t findOrMake(const SettingsWithAnisotropy& tried)
    {
        const ModelSettings& settings = tried.settings;
        for (std::size_t k = 0; k < result.trials.size(); ++k)
        {
            if (result.trials[k].settings == settings && result.trials[k].anisotropy == tried.anisotropy)
                return k;
        }
        if (result.trials.size() >= options.maxTrials)
            throw EndOfSearch();

        const bool byLikelihood = options.objective == Objective::Likelihood && scorer.isGlobal(settings);
        const TrialScorer::Score scored = byLikelihood ? calcDeviance(tried) : crossValidate(tried);
        Trial trial;
        static_cast<SettingsWithAnisotropy&>(trial) = tried;
        trial.criterion = scored.value;
        trial.failure = scored.failure;
        const std::size_t numChosen = coordinates.countChosenScales(settings) + (tried.anisotropy ? ratioAndAngle : 0);
        const double information = std::log(numSamples) * static_cast<double>(numChosen);
        if (byLikelihood)
        {
            trial.hasDeviance = true;
            trial.penalisedCriterion = scored.value + information;
        }
        else
        {
            trial.score = scored.value;
            trial.penalisedCriterion = scored.value * std::exp(0.5 * information / numSamples);
        }
        result.trials.push_back(trial);
        return result.trials.size() - 1;
    }

    /// The penalised criterion of these settings, of this kind.
    double evaluate(const SettingsWithAnisotropy& tried)
    {
        const std::size_t numBefore = result.trials.size();
        const std::size_t k = findOrMake(tried);
        Trial& trial = result.trials[k];
        trialsOfKind.push_back(k);
        if (bestOfKind == none || trial.penalisedCriterion < result.trials[bestOfKind].penalisedCriterion)
        {
            bestOfKind = k;
            trial.isBestSoFar = trial.failure.empty();
        }
        if (!hasWinner)
            result.winner = bestOfKind;
        if (result.trials.size() > numBefore && callback && !callback(trial, result.trials.size(), options.maxTrials))
        {
            result.wasCancelled = true;
            throw EndOfSearch();
        }
        return trial.penalisedCriterion;
    }

    ModelSettings best() const
    {
        return result.trials[bestOfKind].settings;
    }

    /// A kind is what one criterion compares: the trials of a drift order over as many points.
    static bool isOfOneKind(const ModelSettings& a, const ModelSettings& b)
    {
        return a.driftOrder == b.driftOrder && a.numNearestPoints == b.numNearestPoints;
    }

    void beginKind()
    {
        bestOfKind = none;
        trialsOfKind.clear();
    }

    /// Lets the best trial of this kind stand against the winner so far, by cross-validation. A deviance cannot tell of
    /// a model that is not valid in so many inputs; the next best one takes its place then.
    void endKind()
    {
        std::stable_sort(trialsOfKind.begin(), trialsOfKind.end(),
                         [&](std::size_t a, std::size_t b)
                         { return result.trials[a].penalisedCriterion < result.trials[b].penalisedCriterion; });
        for (const std::size_t k : trialsOfKind)
        {
            Trial& trial = result.trials[k];
            if (!trial.failure.empty())
                continue;
            if (std::isnan(trial.score))
            {
                const TrialScorer::Score scored = crossValidate(trial);
                trial.score = scored.value;
                trial.failure = scored.failure;
                if (!scored.failure.empty())
                    continue;
            }
            if (!hasWinner || trial.score < result.trials[result.winner].score * scoreToBeat(trial.settings))
                result.winner = k;
            hasWinner = true;
            return;
        }
    }

    /// As a part of the winner's score.
    double scoreToBeat(const ModelSettings& challenger) const
    {
        const ModelSettings& winner = result.trials[result.winner].settings;
        const bool becomesLocal = scorer.isGlobal(winner) && !scorer.isGlobal(challenger);
        return challenger.driftOrder > winner.driftOrder || becomesLocal ? worthwhile : 1.0;
    }

    std::vector<double> gridRanges() const
    {
        const double longest = std::max(space.minRangeFraction, std::min(longestGridRange, space.maxRangeFraction));
        const double ratio = std::pow(longest / space.minRangeFraction, 1.0 / (numGridRanges - 1));
        std::vector<double> ranges{space.minRangeFraction};
        while (ranges.size() < numGridRanges)
            ranges.push_back(ranges.back() * ratio);
        return ranges;
    }

    /// Of the grid: everywhere for the first drift order, for the others about its best place, which hardly moves.
    bool isNearCentre(std::size_t range, std::size_t nugget) const
    {
        return !hasCentre || (distanceBetween(range, centreRange) <= 1 && distanceBetween(nugget, centreNugget) <= 1);
    }

    /// The coarse grid, equal scales at its best place, and the simplex method over range and nugget: from the best
    /// trial and, for the first drift order, from the best place of the grid that is no neighbour of its best one.
    void searchKind(const ModelSettings& base, std::size_t endOfTrials)
    {
        struct Place
        {
            double criterion;
            std::size_t range;
            std::size_t nugget;
            ModelSettings settings;
        };
        std::vector<Place> places;
        const std::vector<double> ranges = gridRanges();
        for (std::size_t i = 0; i < gridNuggets.size(); ++i)
        {
            for (std::size_t j = 0; j < ranges.size(); ++j)
            {
                if (!isNearCentre(j, i))
                    continue;
                const ModelSettings settings =
                    coordinates.withRangeAndNugget({std::log2(ranges[j]), std::sqrt(gridNuggets[i])}, base);
                places.push_back({evaluate({settings, {}}), j, i, settings});
            }
        }
        std::stable_sort(places.begin(), places.end(),
                         [](const Place& a, const Place& b) { return a.criterion < b.criterion; });
        tryEqualScales();
        refineRangeAndNugget(best(), endOfTrials);
        if (hasCentre)
            return;
        hasCentre = true;
        centreRange = places[0].range;
        centreNugget = places[0].nugget;
        const auto second = std::find_if(places.begin(), places.end(),
                                         [&](const Place& place) {
                                             return distanceBetween(place.range, places[0].range) > 1 ||
                                                    distanceBetween(place.nugget, places[0].nugget) > 1;
                                         });
        if (second != places.end() && second->criterion < failed)
            refineRangeAndNugget(second->settings, endOfTrials);
    }

    void tryEqualScales()
    {
        ModelSettings equal;
        if (!coordinates.withRawScales(best(), equal))
            return;
        const std::vector<double> middle = coordinates.toCoordinates(equal);
        for (const double step : {0.0, -1.0, 1.0})
            evaluate({coordinates.withRangeAndNugget({middle[0] + step, middle[1]}, equal), {}});
    }

    void refineRangeAndNugget(const ModelSettings& base, std::size_t endOfTrials)
    {
        if (result.trials.size() >= endOfTrials)
            return;
        const std::vector<double> middle = coordinates.toCoordinates(base);
        minimise(
            [&](const std::vector<double>& point) {
                return evaluate({coordinates.withRangeAndNugget(point, base), {}});
            },
            {middle[0], middle[1]}, {rangeStep, nuggetStep}, endOfTrials - result.trials.size(), tolerance);
    }

    /// From the winner: one scale after the other, then all together with range and nugget.
    void refineScales()
    {
        if (!coordinates.variesScales() || !hasWinner)
            return;
        beginKind();
        evaluate(result.trials[result.winner]);
        hasWinner = false;
        for (std::size_t c = 2; c < coordinates.getNumCoordinates(); ++c)
        {
            for (const double step : {-1.0, 1.0})
            {
                std::vector<double> moved = coordinates.toCoordinates(best());
                moved[c] += step;
                evaluate({coordinates.toSettings(moved, best()), {}});
            }
        }
        const ModelSettings base = best();
        std::vector<double> steps(coordinates.getNumCoordinates(), rangeStep);
        steps[1] = nuggetStep;
        minimise(
            [&](const std::vector<double>& point) {
                return evaluate({coordinates.toSettings(point, base), {}});
            },
            coordinates.toCoordinates(base), steps, trialsLeftForScales(), tolerance);
        endKind();
    }

    /// From the winner, with equal scales: some ratios at some angles, then all together with range and nugget from the
    /// best of these, whether it beats the winner or not: it counts as a choice, and a better place may not be far.
    void refineAnisotropy()
    {
        if (!hasWinner)
            return;
        beginKind();
        const ModelSettings base = result.trials[result.winner].settings;
        evaluate(result.trials[result.winner]);
        hasWinner = false;
        std::vector<double> middle;
        double lowest = failed;
        for (const double log2Ratio : gridLog2Ratios)
        {
            for (const double angle : gridAngles)
            {
                std::vector<double> moved = anisotropyCoordinates->toCoordinates({base, {}});
                moved[2] = log2Ratio * std::cos(2.0 * angle);
                moved[3] = log2Ratio * std::sin(2.0 * angle);
                const double criterion = evaluate(anisotropyCoordinates->toSettings(moved, base));
                if (middle.empty() || criterion < lowest)
                {
                    lowest = criterion;
                    middle = std::move(moved);
                }
            }
        }
        minimise([&](const std::vector<double>& point)
                 { return evaluate(anisotropyCoordinates->toSettings(point, base)); },
                 middle, {rangeStep, nuggetStep, rangeStep, rangeStep}, trialsLeftForScales(), tolerance);
        endKind();
    }

    std::size_t trialsLeftForScales() const
    {
        const std::size_t numLeft = options.maxTrials - result.trials.size();
        return numLeft - std::min(numLeft, space.numNearestPoints.size());
    }

    /// The winner's settings with each other number of nearest points, by cross-validation.
    void tryNearestPoints()
    {
        const SettingsWithAnisotropy base = result.trials[result.winner];
        for (const int numNearestPoints : space.numNearestPoints)
        {
            if (numNearestPoints == base.settings.numNearestPoints)
                continue;
            SettingsWithAnisotropy tried = base;
            tried.settings.numNearestPoints = numNearestPoints;
            beginKind();
            evaluate(tried);
            endKind();
        }
    }

    const SampleSet& samples;
    const SearchSpace& space;
    const TuningOptions& options;
    const TrialCallback& callback;
    TrialScorer scorer;
    SettingsCoordinates coordinates;
    std::optional<AnisotropyCoordinates> anisotropyCoordinates; // where one is searched
    double numSamples;
    TuningResult& result;
    std::vector<std::size_t> trialsOfKind;
    std::size_t bestOfKind = none;
    bool hasWinner = false; // the winner has been cross-validated
    bool hasCentre = false; // the grid's best place for the first drift order is known
    std::size_t centreRange = 0;
    std::size_t centreNugget = 0;
};

} // namespace

TrialScorer makeScorer(const SampleSet& samples, const TuningOptions& options)
{
    return {samples,      options.objective, options.numFolds, options.numRepeats,
            options.seed, options.estimator, options.units};
}

void searchSettings(const SampleSet& samples, const ModelSettings& start, const SearchSpace& space,
                    const TuningOptions& options, const TrialCallback& callback, TuningResult& result)
{
    Search(samples, space, options, callback, result).run(start);
}

} // namespace fenn::analysis
