#include <algorithm>
#include <cmath>
#include <cstdint>
#include <exception>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "analysis/Tuning.h"
#include "estimation/RangeInUnits.h"
#include "python/src/Arrays.h"
#include "python/src/Bindings.h"
#include "python/src/CoreModel.h"
#include "python/src/Figures.h"
#include "python/src/Signals.h"

namespace krige::python
{

namespace py = pybind11;
using namespace pybind11::literals;
using fenn::analysis::DataSettings;
using fenn::analysis::ModelSettings;
using fenn::analysis::Objective;
using fenn::analysis::SampleSet;
using fenn::analysis::SearchSpace;
using fenn::analysis::Trial;
using fenn::analysis::TuningOptions;
using fenn::analysis::TuningResult;

namespace
{

Objective objectiveOf(const std::string& name)
{
    const std::map<std::string, Objective> objectives{{"likelihood", Objective::Likelihood},
                                                      {"rmse", Objective::Rmse},
                                                      {"mae", Objective::Mae},
                                                      {"crps", Objective::Crps}};
    return objectives.at(name);
}

/// The space that `krige tune` searches with these settings kept.
SearchSpace spaceFor(const SampleSet& samples, const DataSettings& settings, const std::set<std::string>& kept,
                     double leastNugget, bool searchesAnisotropy)
{
    SearchSpace space = fenn::analysis::defaultSearchSpace(samples);
    if (searchesAnisotropy)
        space.maxRatio = space.maxAnisotropy;
    if (searchesAnisotropy || kept.count("scale") > 0 || settings.anisotropy) // which takes the place of scale factors
        space.maxAnisotropy = 1.0;
    if (kept.count("drift_order") > 0)
        space.driftOrders = {settings.driftOrder};
    if (kept.count("range_fraction") > 0)
        space.minRangeFraction = space.maxRangeFraction = withRangeFraction(samples, settings).rangeFraction;
    if (kept.count("nugget") > 0)
        space.minNugget = space.maxNugget = settings.nugget;
    if (kept.count("n_neighbors") > 0)
        space.numNearestPoints = {settings.numNearestPoints};
    space.minNugget = std::max(space.minNugget, leastNugget);
    return space;
}

TuningResult search(const SampleSet& samples, const DataSettings& settings, const SearchSpace& space,
                    double leastNugget, const TuningOptions& options)
{
    const ModelSettings begin = startWithin(space, settings, samples.getNumSamples());
    checkMemory(samples, begin, true);
    ModelSettings start = withRangeFraction(samples, begin);
    start.nugget = std::max(start.nugget, leastNugget);
    std::exception_ptr interruption;
    TuningResult result = tune(samples, start, space, options,
                               [&](const Trial&, std::size_t, std::size_t)
                               {
                                   try
                                   {
                                       checkSignals();
                                   }
                                   catch (...)
                                   {
                                       interruption = std::current_exception();
                                   }
                                   return !interruption;
                               });
    if (interruption)
        std::rethrow_exception(interruption);
    return result;
}

py::dict toDict(const Trial& trial)
{
    DataSettings settings(trial.settings);
    settings.anisotropy = trial.anisotropy;
    return py::dict("settings"_a = settings, "has_deviance"_a = trial.hasDeviance, "criterion"_a = trial.criterion,
                    "penalised_criterion"_a = trial.penalisedCriterion, "score"_a = trial.score,
                    "is_best_so_far"_a = trial.isBestSoFar, "failure"_a = trial.failure);
}

py::object toObject(const fenn::analysis::Assessment& assessment)
{
    if (assessment.statistics.empty())
        return py::none();
    py::list figures;
    for (std::size_t w = 0; w < assessment.statistics.size(); ++w)
        figures.append(figuresOf(assessment.statistics[w], assessment.calibrations[w]));
    return py::dict("score"_a = assessment.score, "statistics"_a = figures);
}

py::dict tuneDict(const py::object& inputs, const py::object& outputs, const DataSettings& settings,
                  const py::object& include, const std::set<std::string>& kept, double leastNugget,
                  const std::string& objective, std::optional<std::size_t> numFolds, std::size_t numRepeats,
                  std::uint64_t seed, std::size_t maxTrials, double heldOutFraction, int numThreads, bool isExact,
                  bool mustTellPointsApart, bool searchesAnisotropy)
{
    const SampleSet read = readSamples(inputs, outputs, include);
    TuningResult result;
    {
        const py::gil_scoped_release unlocked;
        const SampleSet samples = inModelForm(read, settings);
        const auto numSamples = static_cast<double>(samples.getNumSamples());
        const auto numTuned = static_cast<std::size_t>(numSamples - std::floor(heldOutFraction * numSamples));
        TuningOptions options;
        options.numFolds = numFolds.value_or(std::min(options.numFolds, numTuned));
        options.numRepeats = numRepeats;
        options.seed = seed;
        options.heldOutFraction = heldOutFraction;
        options.maxTrials = maxTrials;
        options.objective = objectiveOf(objective);
        options.estimator = makeOptions(numThreads, isExact, mustTellPointsApart);
        result = search(samples, settings, spaceFor(samples, settings, kept, leastNugget, searchesAnisotropy),
                        leastNugget, options);
    }
    py::list trials;
    for (const Trial& trial : result.trials)
        trials.append(toDict(trial));
    return py::dict("trials"_a = trials, "winner"_a = result.winner,
                    "winner_cross_validated"_a = toObject(result.winnerCrossValidated),
                    "start_cross_validated"_a = toObject(result.startCrossValidated),
                    "held_out"_a = toArray(result.heldOutSamples), "winner_held_out"_a = toObject(result.winnerHeldOut),
                    "start_held_out"_a = toObject(result.startHeldOut));
}

} // namespace

void bindTuning(py::module_& module)
{
    module.def("tune", &tuneDict, "X"_a, "y"_a, "settings"_a, "include"_a = py::none(), py::kw_only(), "kept"_a,
               "least_nugget"_a, "objective"_a, "n_folds"_a, "n_repeats"_a, "seed"_a, "max_trials"_a, "held_out"_a,
               "n_threads"_a, "exact"_a, "tell_apart"_a, "search_anisotropy"_a = false);
}

} // namespace krige::python
