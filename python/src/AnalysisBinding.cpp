#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "analysis/BinnedSemivariogram.h"
#include "analysis/Calibration.h"
#include "analysis/ErrorStatistics.h"
#include "analysis/LeaveOneOut.h"
#include "analysis/OutputSill.h"
#include "analysis/Places.h"
#include "analysis/SemivariogramFit.h"
#include "estimation/RangeInUnits.h"
#include "estimation/Separation.h"
#include "estimation/StandardError.h"
#include "estimation/makeModelParts.h"
#include "python/src/Arrays.h"
#include "python/src/Bindings.h"
#include "python/src/CoreModel.h"
#include "python/src/Figures.h"
#include "python/src/Signals.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige::python
{

namespace py = pybind11;
using namespace pybind11::literals;
using fenn::analysis::DataSettings;
using fenn::analysis::LeaveOneOutResult;
using fenn::analysis::OutputSill;
using fenn::estimation::SampleSet;

namespace
{

struct LeftOut
{
    Columns truths;
    Columns estimates;
    Columns standardErrors;
    std::vector<fenn::analysis::ErrorStatistics> statistics;
    std::vector<fenn::analysis::Calibration> calibrations;
    std::vector<std::vector<std::size_t>> members;
};

/// In the data's units, as `krige validate --leave-one-out` tells it.
LeftOut leaveOneOutOf(const CoreModel& model)
{
    const fenn::analysis::DataModel& asked = model.get();
    const fenn::analysis::OutputUnits& units = asked.getSettings().units;
    LeaveOneOutResult left =
        leaveOneOut(asked.getSamples(), asked.getSettings(), checkingSignals(), model.getOptions());
    const std::vector<OutputSill> sills = applyChoices(asked.getSettings().sills, left.sills);
    LeftOut result;
    for (std::size_t w = 0; w < left.truths.size(); ++w)
    {
        std::vector<double>& truths = left.truths[w];
        std::vector<double>& estimates = left.estimates.values[w];
        std::vector<double> errors;
        for (const double variance : left.estimates.variances)
            errors.push_back(
                fenn::estimation::standardErrorOf(fenn::estimation::comparableVariance(variance), sills[w].value));
        result.calibrations.push_back(fenn::analysis::calcCalibration(truths, estimates, errors));
        if (!(units == fenn::analysis::OutputUnits()))
        {
            for (std::size_t i = 0; i < truths.size(); ++i)
            {
                truths[i] = units.areLogarithms ? std::exp(truths[i]) : truths[i];
                estimates[i] = units.estimateOf(estimates[i], left.estimates.variances[i],
                                                left.estimates.driftProducts[i], sills[w].value);
            }
        }
        result.statistics.push_back(fenn::analysis::calcErrorStatistics(truths, estimates, {}, 1.0));
        result.standardErrors.push_back(std::move(errors));
    }
    result.truths = std::move(left.truths);
    result.estimates = std::move(left.estimates.values);
    result.members = std::move(left.members);
    return result;
}

py::dict leaveOneOutDict(const CoreModel& model)
{
    LeftOut left;
    {
        const py::gil_scoped_release unlocked;
        left = leaveOneOutOf(model);
    }
    py::list statistics;
    for (std::size_t w = 0; w < left.statistics.size(); ++w)
        statistics.append(figuresOf(left.statistics[w], left.calibrations[w]));
    py::list members;
    for (const std::vector<std::size_t>& samples : left.members)
        members.append(toArray(samples));
    return py::dict("truths"_a = toArray(left.truths), "estimates"_a = toArray(left.estimates),
                    "std"_a = toArray(left.standardErrors), "members"_a = members, "statistics"_a = statistics);
}

/// maxLag: normalised, or in the inputs' units where inUnits says so; none: half the diagonal of the samples' box.
py::dict semivariogramOf(const CoreModel& model, std::size_t numLags, std::optional<double> maxLag, bool inUnits,
                         std::size_t output)
{
    const fenn::ModelParts& parts = model.get().getEstimator().getParts();
    const std::optional<double> scale = fenn::analysis::commonScale(parts);
    if (inUnits && !scale)
        throw py::value_error("max_lag: a distance in the inputs' units needs inputs of one scale; set scale='raw'");
    fenn::analysis::BinnedSemivariogram table;
    double sill = 0.0;
    {
        const py::gil_scoped_release unlocked;
        sill = model.get().getSills(checkingSignals())[output].value;
        fenn::analysis::BinningOptions options;
        options.outputVar = output;
        options.numLags = numLags;
        options.maxLag = !maxLag ? fenn::analysis::defaultMaxLag(parts) : inUnits ? *maxLag * *scale : *maxLag;
        options.sill = sill;
        table = binSemivariogram(parts, options);
    }
    const double perNormalised = scale ? 1.0 / *scale : 1.0;
    const double range =
        fenn::estimation::calcRangesPerInput(parts)[0] * parts.getNormalizers()[0].getScale() * perNormalised;
    std::vector<double> lower;
    std::vector<double> upper;
    std::vector<double> mean;
    std::vector<double> values;
    std::vector<double> modelValues;
    std::vector<std::size_t> counts;
    for (const fenn::analysis::LagBin& bin : table.bins)
    {
        lower.push_back(bin.lowerLag * perNormalised);
        upper.push_back(bin.upperLag * perNormalised);
        mean.push_back(bin.meanLag * perNormalised);
        values.push_back(bin.semivariance);
        modelValues.push_back(bin.modelValue);
        counts.push_back(bin.numPairs);
    }
    return py::dict("lower_lag"_a = toArray(lower), "upper_lag"_a = toArray(upper), "mean_lag"_a = toArray(mean),
                    "semivariance"_a = toArray(values), "model"_a = toArray(modelValues), "n_pairs"_a = toArray(counts),
                    "sill"_a = sill, "range"_a = range, "in_units"_a = scale.has_value(),
                    "per_normalised"_a = perNormalised, "n_points"_a = table.numPoints,
                    "n_points_used"_a = table.numPointsUsed);
}

/// The model's semivariogram for these lags, in the unit of the range.
py::array_t<double> sphericalAt(const py::object& lags, double sill, double nugget, double range)
{
    const fenn::analysis::SphericalFit curve{sill, nugget, range, 0.0};
    const Table table = Table::ofNumbers(lags, "lags");
    Columns columns;
    table.read(0, table.getNumRows(), columns);
    std::vector<double> values;
    for (const double lag : columns.front())
        values.push_back(curve.evaluate(lag));
    return toArray(values);
}

SampleSet placesOf(const py::object& inputs)
{
    const Table table = Table::ofNumbers(inputs, "X");
    Columns columns;
    table.read(0, table.getNumRows(), columns);
    return {std::move(columns), {std::vector<double>(table.getNumRows(), 0.0)}};
}

py::array_t<std::int64_t> assignFoldsTo(const py::object& inputs, double duplicateTolerance, std::size_t numFolds,
                                        std::uint64_t seed)
{
    const SampleSet samples = placesOf(inputs);
    std::vector<std::size_t> folds;
    {
        const py::gil_scoped_release unlocked;
        folds = fenn::analysis::assignFoldsToPlaces(samples, duplicateTolerance, numFolds, seed);
    }
    return toArray(folds);
}

/// The nearest two points of a model that could not tell them apart; None where they are not to blame.
py::object describeNearest(const py::object& inputs, const py::object& outputs, const DataSettings& settings,
                           const py::object& include, bool isUnsolvable)
{
    const SampleSet samples = inModelForm(readSamples(inputs, outputs, include), settings);
    const auto parts = fenn::estimation::makeModelParts(samples, settings);
    const std::size_t numPoints = parts->getPoints().size();
    const bool isGlobal = usesAllPoints(settings, numPoints);
    const fenn::estimation::Separation nearest =
        fenn::estimation::checkSeparation(*parts, isUnsolvable && isGlobal ? 0.0 : std::nan(""),
                                          isGlobal ? numPoints : static_cast<std::size_t>(settings.numNearestPoints));
    const bool areRepeated = nearest.verdict == fenn::estimation::SeparationVerdict::Repeated;
    if (!areRepeated && nearest.verdict != fenn::estimation::SeparationVerdict::TooNear)
        return py::none();
    return py::dict("first"_a = nearest.firstSample, "second"_a = nearest.secondSample, "are_repeated"_a = areRepeated,
                    "n_repeats"_a = nearest.numRepeats, "distance"_a = nearest.distance);
}

} // namespace

void bindAnalysis(py::module_& module)
{
    module.def("leave_one_out", &leaveOneOutDict, "model"_a);
    module.def("semivariogram", &semivariogramOf, "model"_a, "n_lags"_a, "max_lag"_a, "in_units"_a, "output"_a);
    module.def("spherical", &sphericalAt, "lags"_a, "sill"_a, "nugget"_a, "range"_a);
    module.def("assign_folds", &assignFoldsTo, "X"_a, "duplicate_tolerance"_a, "n_folds"_a, "seed"_a);
    module.def("find_nearest_pair", &describeNearest, "X"_a, "y"_a, "settings"_a, "include"_a, "is_unsolvable"_a);
}

} // namespace krige::python
