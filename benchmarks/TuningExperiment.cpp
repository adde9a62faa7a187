// Which objective tunes best: fields of known parameters, tuned by each objective and compared, at places that no
// objective saw, with the model of the true parameters. Prints one CSV line per field and objective, which
// benchmarks/tuning_table.py turns into the tables of docs/tuning.md.
//
// Usage: TuningExperiment NUMBER_OF_FIELDS [FIRST]

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "analysis/Calibration.h"
#include "analysis/NormalDistribution.h"
#include "analysis/SearchSpace.h"
#include "analysis/Sill.h"
#include "analysis/Tuning.h"
#include "estimation/Estimates.h"
#include "estimation/Estimator.h"
#include "estimation/chooseEstimator.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"

namespace
{

using fenn::analysis::Objective;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;

constexpr std::size_t numTargets = 400;

using Columns = std::vector<std::vector<double>>;

class Random
{
public:
    explicit Random(std::uint64_t seed) : engine(seed) {}

    /// In (0, 1).
    double uniform()
    {
        return (static_cast<double>(engine() >> 11) + 0.5) * 0x1p-53;
    }

    double normal()
    {
        return fenn::analysis::normalQuantile(uniform());
    }

    template <typename T, std::size_t count>
    T oneOf(const std::array<T, count>& choices)
    {
        return choices[static_cast<std::size_t>(uniform() * static_cast<double>(count))];
    }

private:
    std::mt19937_64 engine;
};

/// A field over the unit cube of its inputs.
struct Field
{
    std::size_t numSamples;
    std::size_t numInputs;
    const char* pattern;
    double range; // in the inputs' units
    double nugget;
    bool hasTrend; // linear, of one standard deviation along the first input
};

Field drawField(Random& random)
{
    Field field{};
    field.numSamples = static_cast<std::size_t>(std::lround(50.0 * std::pow(20.0, random.uniform())));
    field.numInputs = random.oneOf(std::array<std::size_t, 5>{2, 2, 3, 4, 6});
    field.pattern = random.oneOf(std::array<const char*, 3>{"random", "clustered", "regular"});
    const double diagonal = std::sqrt(static_cast<double>(field.numInputs));
    field.range = diagonal * 0.15 * std::pow(10.0, random.uniform());
    field.nugget = random.oneOf(std::array{0.0, 0.05, 0.2, 0.5, 0.9});
    field.hasTrend = random.uniform() < 0.25;
    return field;
}

/// Columns of numSamples samples in the field's pattern, then numTargets targets anywhere.
Columns drawPlaces(const Field& field, Random& random)
{
    Columns places(field.numInputs);
    const auto add = [&](const auto& coordinate)
    {
        for (std::size_t v = 0; v < field.numInputs; ++v)
            places[v].push_back(coordinate(v));
    };
    const std::string pattern = field.pattern;
    std::vector<double> centre(field.numInputs, 0.5);
    const std::vector<double> irrational{
        0.0, 0.7548776662466927, 0.5698402909980532, 0.41421356237309515, 0.7320508075688772, 0.23606797749978969};
    for (std::size_t i = 0; i < field.numSamples; ++i)
    {
        if (pattern == "clustered" && i % 10 == 0)
        {
            for (double& c : centre)
                c = random.uniform();
        }
        add(
            [&](std::size_t v)
            {
                if (pattern == "clustered")
                    return centre[v] + 0.05 * random.normal();
                if (pattern == "regular") // a lattice of equal shares along every input
                {
                    const double share = static_cast<double>(i) + 0.5;
                    return v == 0 ? share / static_cast<double>(field.numSamples)
                                  : std::fmod(share * irrational[v], 1.0);
                }
                return random.uniform();
            });
    }
    for (std::size_t t = 0; t < numTargets; ++t)
        add([&](std::size_t) { return random.uniform(); });
    return places;
}

/// Correlated values at the places: the covariances' Cholesky factor times independent numbers. Empty where the
/// semivariogram, which is valid in up to three inputs, has none.
std::vector<double> drawValues(const Field& field, const Columns& places, Random& random)
{
    const std::size_t n = places[0].size();
    std::vector<double> c(n * n);
    for (std::size_t i = 0; i < n; ++i)
    {
        for (std::size_t j = 0; j < i; ++j)
        {
            double squared = 0.0;
            for (const std::vector<double>& column : places)
                squared += (column[i] - column[j]) * (column[i] - column[j]);
            const double h = std::sqrt(squared) / field.range;
            c[n * i + j] = h < 1.0 ? (1.0 - field.nugget) * (1.0 - 1.5 * h + 0.5 * h * h * h) : 0.0;
        }
        c[n * i + i] = 1.0;
    }
    std::vector<double> values(n);
    std::vector<double> independent(n);
    for (std::size_t i = 0; i < n; ++i)
    {
        double* const row = &c[n * i];
        for (std::size_t j = 0; j <= i; ++j)
        {
            const double* const other = &c[n * j];
            double sum = row[j];
            for (std::size_t k = 0; k < j; ++k)
                sum -= row[k] * other[k];
            if (i != j)
                row[j] = sum / other[j];
            else if (sum > 1e-10)
                row[j] = std::sqrt(sum);
            else
                return {};
        }
        independent[i] = random.normal();
        for (std::size_t k = 0; k <= i; ++k)
            values[i] += row[k] * independent[k];
        if (field.hasTrend)
            values[i] += 3.5 * (places[0][i] - 0.5);
    }
    return values;
}

SampleSet part(const Columns& places, const std::vector<double>& values, std::size_t first, std::size_t end)
{
    const auto cut = [&](const std::vector<double>& column)
    {
        return std::vector<double>(column.begin() + static_cast<std::ptrdiff_t>(first),
                                   column.begin() + static_cast<std::ptrdiff_t>(end));
    };
    Columns inputs;
    for (const std::vector<double>& column : places)
        inputs.push_back(cut(column));
    return {std::move(inputs), {cut(values)}};
}

struct Outcome
{
    double rmse;
    double coverage; // of intervals of 95 %
    double crps;
};

Outcome judge(const SampleSet& samples, const SampleSet& targets, const ModelSettings& settings, double sill = 0.0)
{
    const auto estimator = fenn::estimation::chooseEstimator(samples, settings);
    if (!(sill > 0.0))
        sill = fenn::analysis::estimateSills(*estimator, settings, 0)[0].value;
    const fenn::estimation::Estimates estimates = estimateAt(*estimator, targets);
    double sum = 0.0;
    std::vector<double> standardErrors;
    for (std::size_t t = 0; t < numTargets; ++t)
    {
        const double error = estimates.values[0][t] - targets.getOutput(0)[t];
        sum += error * error;
        standardErrors.push_back(std::sqrt(std::max(estimates.variances[t], 0.0) * sill));
    }
    const auto calibration = fenn::analysis::calcCalibration(targets.getOutput(0), estimates.values[0], standardErrors);
    return {std::sqrt(sum / static_cast<double>(numTargets)), calibration.coverages[2].actual, calibration.crps};
}

double cpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

void printRow(std::size_t number, const Field& field, const char* objective, const Outcome& outcome,
              const Outcome& best, double seconds, const ModelSettings& settings)
{
    std::printf("%zu,%zu,%zu,%s,%.4g,%.4g,%d,%s,%.6g,%.6g,%.4f,%.4f,%d,%.4g,%.4g,%zu\n", number, field.numSamples,
                field.numInputs, field.pattern, field.range, field.nugget, field.hasTrend ? 1 : 0, objective,
                outcome.rmse / best.rmse, outcome.crps / best.crps, outcome.coverage, seconds, settings.driftOrder,
                settings.rangeFraction, settings.nugget, settings.scaleFactors.size());
    std::fflush(stdout);
}

/// The true model of these samples.
ModelSettings truthOf(const Field& field, const SampleSet& samples)
{
    double squared = 0.0;
    for (std::size_t v = 0; v < field.numInputs; ++v)
        squared += samples.calcInputRange(v) * samples.calcInputRange(v);
    ModelSettings truth;
    truth.scaleFactors.assign(field.numInputs, 1.0);
    truth.rangeFraction = field.range / std::sqrt(squared);
    truth.nugget = field.nugget;
    truth.driftOrder = field.hasTrend ? 1 : 0;
    return truth;
}

void runField(std::size_t number)
{
    Random random(number);
    const Field field = drawField(random);
    const Columns places = drawPlaces(field, random);
    const std::vector<double> values = drawValues(field, places, random);
    if (values.empty())
    {
        std::fprintf(stderr, "field %zu: no such field in %zu inputs\n", number, field.numInputs);
        return;
    }
    const SampleSet samples = part(places, values, 0, field.numSamples);
    const SampleSet targets = part(places, values, field.numSamples, values.size());
    const ModelSettings truth = truthOf(field, samples);
    const Outcome best = judge(samples, targets, truth, 1.0);
    printRow(number, field, "truth", best, best, 0.0, truth);
    printRow(number, field, "defaults", judge(samples, targets, {}), best, 0.0, {});

    for (const auto& [name, objective] :
         {std::pair("likelihood", Objective::Likelihood), std::pair("rmse", Objective::Rmse),
          std::pair("mae", Objective::Mae), std::pair("crps", Objective::Crps)})
    {
        fenn::analysis::TuningOptions options;
        options.heldOutFraction = 0.0;
        options.objective = objective;
        fenn::analysis::SearchSpace space = fenn::analysis::defaultSearchSpace(samples);
        space.numNearestPoints = {0};
        const double begin = cpuSeconds();
        const auto result = tune(samples, {}, space, options);
        const double seconds = cpuSeconds() - begin;
        const ModelSettings& winner = result.trials[result.winner].settings;
        printRow(number, field, name, judge(samples, targets, winner), best, seconds, winner);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::size_t numFields = argc > 1 ? static_cast<std::size_t>(std::atoi(argv[1])) : 0;
    const std::size_t first = argc > 2 ? static_cast<std::size_t>(std::atoi(argv[2])) : 1;
    if (numFields == 0)
    {
        std::fprintf(stderr, "usage: TuningExperiment NUMBER_OF_FIELDS [FIRST]\n");
        return 2;
    }
    std::printf("field,samples,inputs,pattern,range,nugget,trend,objective,rmse_ratio,crps_ratio,coverage,seconds,"
                "drift,tuned_range,tuned_nugget,scales\n");
    for (std::size_t number = first; number < first + numFields; ++number)
    {
        try
        {
            runField(number);
        }
        catch (const SurrogateModelInterface::Error& error)
        {
            std::fprintf(stderr, "field %zu: %s\n", number, error.what());
        }
    }
    return 0;
}
