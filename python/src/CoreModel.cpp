#include "python/src/CoreModel.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include <unistd.h>

#include "estimation/MemoryForecast.h"
#include "estimation/SystemSize.h"
#include "python/src/Signals.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige::python
{

namespace
{

using fenn::analysis::DataModel;
using fenn::analysis::DataSettings;
using fenn::estimation::EstimatorOptions;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;

Columns readAll(const py::object& object, const char* name)
{
    const Table table = Table::ofNumbers(object, name);
    Columns columns;
    table.read(0, table.getNumRows(), columns);
    return columns;
}

} // namespace

void checkMemory(const SampleSet& samples, const ModelSettings& settings, bool isExact)
{
    const double available = fenn::estimation::findAvailableBytes();
    const std::size_t numInputs = samples.getNumInputVars();
    if (fenn::estimation::calcSystemBytes(samples.getNumSamples(), numInputs, settings.driftOrder) <= available)
        return;
    Columns inputs;
    for (std::size_t v = 0; v < numInputs; ++v)
        inputs.push_back(samples.getInput(v));
    const fenn::estimation::MemoryForecast forecast = fenn::estimation::forecastMemory(inputs, settings, isExact);
    if (forecast.bytes <= available)
        return;
    const std::string figures = " takes " + fenn::estimation::formatBytes(forecast.bytes) +
                                " of memory and there are " + fenn::estimation::formatBytes(available) + " left; ";
    if (forecast.isGlobal)
        throw MemoryShortage("a model over all " + std::to_string(forecast.numPoints) + " points" + figures +
                             "set n_neighbors, for instance to 32, to work on the nearest samples");
    throw MemoryShortage("a system of " + std::to_string(settings.numNearestPoints) + " nearest samples" + figures +
                         "lower n_neighbors");
}

SampleSet readSamples(const py::object& inputs, const py::object& outputs, const py::object& include)
{
    std::vector<bool> flags;
    if (!include.is_none())
    {
        for (const py::handle& flag : include)
            flags.push_back(flag.cast<bool>());
    }
    return {readAll(inputs, "X"), readAll(outputs, "y"), std::move(flags)};
}

EstimatorOptions makeOptions(int numThreads, bool isExact, bool mustTellPointsApart)
{
    EstimatorOptions options;
    options.numThreads = numThreads;
    options.isExact = isExact;
    options.mustTellPointsApart = mustTellPointsApart;
    options.checkStandIn = [](double bytes)
    {
        const double available = fenn::estimation::findAvailableBytes();
        if (bytes > available)
            throw MemoryShortage("the exact engine, which these samples need, takes " +
                                 fenn::estimation::formatBytes(bytes) + " of memory and there are " +
                                 fenn::estimation::formatBytes(available) +
                                 " left; set n_neighbors, for instance to 32, to work on the nearest samples");
    };
    return options;
}

struct CoreModel::ResultTables
{
    Table values;
    std::optional<Table> variances;
    std::optional<Table> standardErrors;
    std::optional<Table> lowerEnds;
    std::optional<Table> upperEnds;
};

CoreModel::CoreModel(const py::object& inputs, const py::object& outputs, const DataSettings& settings,
                     const py::object& include, int numThreads, bool isExact, bool mustTellPointsApart)
    : process(getpid()), options(makeOptions(numThreads, isExact, mustTellPointsApart))
{
    const SampleSet samples = readSamples(inputs, outputs, include);
    const py::gil_scoped_release unlocked;
    SampleSet formed = inModelForm(samples, settings);
    checkMemory(formed, settings, isExact);
    model = std::make_unique<DataModel>(std::move(formed), settings, options);
}

CoreModel::~CoreModel()
{
    // In a forked process the threads that its parts would wait for are not there.
    if (process != getpid())
        static_cast<void>(model.release());
}

/// So many targets that a global model with variances answers them in a fraction of a second.
std::size_t CoreModel::choosePiece() const
{
    constexpr double operations = 2e8;
    if (!model->getEstimator().isGlobal())
        return 1024;
    const auto numPoints = static_cast<double>(model->getEstimator().getParts().getPoints().size());
    return static_cast<std::size_t>(std::clamp(operations / (numPoints * numPoints), 64.0, 4096.0));
}

void CoreModel::predictInPieces(const Table& targets, ResultTables& results, double coverage) const
{
    using Clock = std::chrono::steady_clock;
    constexpr std::size_t mostTargets = 16384;
    constexpr auto shortPiece = std::chrono::milliseconds(60);
    constexpr auto longPiece = std::chrono::milliseconds(240);

    const fenn::analysis::WantedPredictions wanted{results.variances.has_value(), results.standardErrors.has_value(),
                                                   results.lowerEnds ? coverage : 0.0};
    fenn::analysis::Predictions predictions;
    Columns piece;
    std::size_t size = choosePiece();
    for (std::size_t first = 0; first < targets.getNumRows();)
    {
        const std::size_t count = std::min(size, targets.getNumRows() - first);
        const Clock::time_point start = Clock::now();
        targets.read(first, count, piece);
        model->predict(piece, wanted, predictions, checkingSignals());
        results.values.write(first, predictions.values);
        if (results.variances)
            results.variances->write(first, {predictions.variances});
        if (results.standardErrors)
            results.standardErrors->write(first, predictions.standardErrors);
        if (results.lowerEnds)
            results.lowerEnds->write(first, predictions.lowerEnds);
        if (results.upperEnds)
            results.upperEnds->write(first, predictions.upperEnds);
        first += count;
        if (first == targets.getNumRows())
            return;
        const Clock::duration elapsed = Clock::now() - start;
        if (elapsed < shortPiece)
            size = std::min(2 * size, mostTargets);
        else if (elapsed > longPiece)
            size = std::max(size / 2, std::size_t{16});
        checkSignals();
    }
}

Table CoreModel::readTargets(const py::object& inputs) const
{
    Table targets = Table::ofNumbers(inputs, "X");
    const std::size_t numInputs = model->getSamples().getNumInputVars();
    if (!targets.isTwoDimensional() || targets.getNumColumns() != numInputs)
        throw py::value_error("X must have shape (n, " + std::to_string(numInputs) + ")");
    return targets;
}

void CoreModel::predict(const py::object& inputs, const py::object& values, const py::object& variances,
                        const py::object& standardErrors, const py::object& lowerEnds, const py::object& upperEnds,
                        double coverage) const
{
    const Table targets = readTargets(inputs);
    const std::size_t numRows = targets.getNumRows();
    const std::size_t numOutputs = model->getSamples().getNumOutputVars();
    const auto tableOf = [&](const py::object& object, const char* name, std::size_t numColumns) -> std::optional<Table>
    {
        if (object.is_none())
            return std::nullopt;
        return Table::ofResults(object, name, numRows, numColumns);
    };
    ResultTables results{Table::ofResults(values, "out", numRows, numOutputs), tableOf(variances, "variance_out", 1),
                         tableOf(standardErrors, "std_out", numOutputs), tableOf(lowerEnds, "lower_out", numOutputs),
                         tableOf(upperEnds, "upper_out", numOutputs)};
    const py::gil_scoped_release unlocked;
    predictInPieces(targets, results, coverage);
}

py::object CoreModel::estimate(const py::object& inputs, const py::object& values, const py::object& variances) const
{
    const Table targets = readTargets(inputs);
    const std::size_t numRows = targets.getNumRows();
    const std::size_t numOutputs = model->getSamples().getNumOutputVars();
    py::object made = values;
    if (values.is_none())
        made = numOutputs == 1 ? py::object(py::array_t<double>(static_cast<py::ssize_t>(numRows)))
                               : py::object(py::array_t<double>({numRows, numOutputs}));
    ResultTables results{Table::ofResults(made, "out", numRows, numOutputs), {}, {}, {}, {}};
    if (!variances.is_none())
        results.variances = Table::ofResults(variances, "variance_out", numRows, 1);
    const py::gil_scoped_release unlocked;
    predictInPieces(targets, results, 0.0);
    return made;
}

} // namespace krige::python
