#include "surrogatemodel_kriging/KrigingSurrogateModel.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <map>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/KrigingControllerAbstract.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "tests/support/ModelAccess.h"
#include "tests/support/Samples.h"

// Real data against stored figures of gstat, a Kriging program of other people: tests/data/gstat/README.md.

namespace
{

using fenn::test::ValueArrays;

/// Measured: 2e-12 at most. Rounding stays well below the bound, a wrong formula does not.
constexpr double relativeTolerance = 1e-9;

constexpr int highestDriftOrder = 3;

using Table = std::map<std::string, std::vector<double>>;

std::vector<std::string> splitLine(const std::string& line)
{
    std::vector<std::string> fields(1);
    for (const char c : line)
    {
        if (c == ',')
            fields.emplace_back();
        else
            fields.back() += c;
    }
    return fields;
}

double parse(const std::string& field)
{
    double value = 0.0;
    const char* const end = field.data() + field.size();
    const std::from_chars_result result = std::from_chars(field.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end)
        throw std::runtime_error("not a number: " + field);
    return value;
}

Table readTable(const std::string& name)
{
    const std::string path = std::string(FENN_TEST_DATA_DIR) + "/gstat/" + name;
    std::ifstream file(path);
    std::string line;
    if (!std::getline(file, line))
        throw std::runtime_error("cannot read " + path);
    const std::vector<std::string> names = splitLine(line);
    Table table;
    while (std::getline(file, line))
    {
        const std::vector<std::string> fields = splitLine(line);
        for (std::size_t c = 0; c < names.size(); ++c)
            table[names[c]].push_back(parse(fields.at(c)));
    }
    return table;
}

std::vector<std::vector<double>> columns(const Table& table, const std::vector<std::string>& names)
{
    std::vector<std::vector<double>> chosen;
    for (const std::string& name : names)
        chosen.push_back(table.at(name));
    return chosen;
}

struct DataSet
{
    std::string name;
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
};

/// Names the data set in test names and failures; the default would print its bytes.
void PrintTo(const DataSet& dataSet, std::ostream* out)
{
    *out << dataSet.name;
}

/// What one model is built with, and the first of its rows among the expected figures; row t of them is target t.
struct System
{
    double rangeFraction;
    double nugget;
    int numNearestPts;
    int driftOrder;
    std::size_t firstRow;
};

testing::AssertionResult agree(double actual, double expected)
{
    if (std::abs(actual - expected) <= relativeTolerance * std::abs(expected))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << actual << " is not within 1e-9 of " << expected << ", relative difference "
                                       << std::abs(actual - expected) / std::abs(expected);
}

class GstatComparisonTest : public testing::TestWithParam<DataSet>
{
protected:
    GstatComparisonTest()
        : expected(readTable(GetParam().name + "_expected.csv")),
          sampleInputs(columns(samples, GetParam().inputs)),
          sampleOutputs(columns(samples, GetParam().outputs)),
          targets(columns(readTable(GetParam().name + "_targets.csv"), GetParam().inputs)),
          numTargets(targets[0].size())
    {
        for (std::size_t o = 0; o < GetParam().outputs.size(); ++o)
            outputVars.insert(static_cast<int>(o));
        for (std::size_t row = 0; row < expected.at("target").size(); row += numTargets)
            systems.push_back({expected.at("range")[row], expected.at("nugget")[row],
                               static_cast<int>(expected.at("nearest")[row]),
                               static_cast<int>(expected.at("drift")[row]), row});
    }

    /// Equal positive factors: distances keep their ratios, whatever the common rescaling makes of the factor.
    KrigingSurrogateModel buildModel(const System& system)
    {
        const std::vector<double> scaleFactors(GetParam().inputs.size(), 0.01);
        return KrigingSurrogateModel(sampleInputs.arrays(), sampleOutputs.arrays(),
                                     static_cast<int>(sampleInputs[0].size()), -1.0, scaleFactors, system.driftOrder,
                                     system.rangeFraction, system.nugget, system.numNearestPts);
    }

    static std::string describe(const System& system, std::size_t target)
    {
        return "range " + std::to_string(system.rangeFraction) + ", nugget " + std::to_string(system.nugget) +
               ", nearest " + std::to_string(system.numNearestPts) + ", drift " + std::to_string(system.driftOrder) +
               ", target " + std::to_string(target);
    }

    const Table samples = readTable(GetParam().name + "_samples.csv");
    const Table expected;
    ValueArrays sampleInputs;
    ValueArrays sampleOutputs;
    ValueArrays targets;
    std::size_t numTargets;
    std::set<int> outputVars;
    std::vector<System> systems;
};

TEST_P(GstatComparisonTest, EachSystemIsHeldAgainstEveryTargetInOrder)
{
    ASSERT_EQ(numTargets, 40U);
    ASSERT_EQ(expected.at("variance").size(), systems.size() * numTargets);
    for (const System& system : systems)
        for (std::size_t t = 0; t < numTargets; ++t)
            EXPECT_EQ(expected.at("target")[system.firstRow + t], static_cast<double>(t)) << describe(system, t);
}

TEST_P(GstatComparisonTest, EveryDriftOrderIsComparedGloballyAndLocally)
{
    std::set<std::pair<int, bool>> compared;
    for (const System& system : systems)
        compared.emplace(system.driftOrder, system.numNearestPts > 0);

    EXPECT_EQ(compared.size(), 2U * (highestDriftOrder + 1));
}

TEST_P(GstatComparisonTest, EstimatesOfTheExportedModelAgree)
{
    for (const System& system : systems)
    {
        KrigingSurrogateModel model = buildModel(system);
        ValueArrays estimates(outputVars.size(), numTargets);
        model.activateDependentVariables(outputVars);
        model.interpolateDependentValues(targets.arrays(), outputVars, estimates.arrays(), numTargets);

        for (std::size_t o = 0; o < outputVars.size(); ++o)
            for (std::size_t t = 0; t < numTargets; ++t)
                EXPECT_TRUE(agree(estimates[o][t], expected.at(GetParam().outputs[o])[system.firstRow + t]))
                    << GetParam().outputs[o] << ", " << describe(system, t);
    }
}

TEST_P(GstatComparisonTest, VariancesOfTheControllerAgree)
{
    for (const System& system : systems)
    {
        KrigingSurrogateModel model = buildModel(system);
        KrigingControllerAbstract& controller = fenn::ModelAccess::getController(model);
        ValueArrays estimates(outputVars.size(), numTargets);
        ValueArrays variances(outputVars.size(), numTargets);
        controller.setOutputVars(outputVars);
        controller.interpolate(targets.arrays(), outputVars, static_cast<int>(numTargets), estimates.arrays(),
                               variances.arrays());

        for (std::size_t o = 0; o < outputVars.size(); ++o)
            for (std::size_t t = 0; t < numTargets; ++t)
                EXPECT_TRUE(agree(variances[o][t], expected.at("variance")[system.firstRow + t]))
                    << GetParam().outputs[o] << ", " << describe(system, t);
    }
}

TEST_P(GstatComparisonTest, NearestPointsAreAnsweredByTheLocalController)
{
    for (const System& system : systems)
    {
        KrigingSurrogateModel model = buildModel(system);
        const auto* const local = dynamic_cast<NPtsKrigingController*>(&fenn::ModelAccess::getController(model));

        EXPECT_EQ(local != nullptr, system.numNearestPts > 0) << describe(system, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(RealData, GstatComparisonTest,
                         testing::Values(DataSet{"volcano", {"x", "y"}, {"elevation"}},
                                         DataSet{"quakes", {"east", "north", "depth"}, {"mag", "stations"}}),
                         [](const testing::TestParamInfo<DataSet>& dataSet) { return dataSet.param.name; });

} // namespace
