#include "host/CommandLine.h"

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/resource.h>

#include "host/files/ColumnReader.h"
#include "host/targets/TargetSource.h"
#include "host/text/NumberText.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/support/BitComparison.h"
#include "tests/support/Samples.h"

using fenn::test::randomValues;
using fenn::test::sameBits;
using fenn::test::ValueArrays;
using krige::test::TemporaryFolder;
using testing::HasSubstr;

namespace
{

using Columns = std::vector<std::vector<double>>;

std::string csvOf(const std::string& header, const Columns& columns)
{
    std::string text = header + "\n";
    for (std::size_t row = 0; row < columns.front().size(); ++row)
    {
        for (const std::vector<double>& column : columns)
        {
            krige::appendNumber(text, column[row]);
            text += ',';
        }
        text.back() = '\n';
    }
    return text;
}

struct Outcome
{
    int status = 0;
    std::string out;
    std::string err;
};

Outcome runKrige(std::vector<std::string> arguments)
{
    std::vector<const char*> argv{"krige"};
    for (const std::string& argument : arguments)
        argv.push_back(argument.c_str());
    std::ostringstream out;
    std::ostringstream err;
    Outcome run;
    run.status = krige::runCommandLine(static_cast<int>(argv.size()), argv.data(), out, err);
    run.out = out.str();
    run.err = err.str();
    return run;
}

/// Samples of two outputs over two inputs, one pair of them coincident, and targets among them.
class PredictBitsTest : public testing::Test
{
protected:
    PredictBitsTest()
        : sampleInputs(randomValues(2, 60, 0.0, 10.0, 1)), sampleOutputs(randomValues(2, 60, -5.0, 5.0, 2))
    {
        sampleInputs[0][7] = sampleInputs[0][3];
        sampleInputs[1][7] = sampleInputs[1][3];
        Columns all = sampleInputs;
        all.insert(all.end(), sampleOutputs.begin(), sampleOutputs.end());
        samplesPath = folder.write("samples.csv", csvOf("x,y,a,b", all));
    }

    /// The columns of the file that krige writes for these targets: inputs, then outputs.
    Columns predicted(const Columns& targets, std::vector<std::string> settings)
    {
        std::vector<std::string> arguments{"predict",   samplesPath,
                                           "--inputs",  "x,y",
                                           "--outputs", "a,b",
                                           "--at",      folder.write("t.csv", csvOf("x,y", targets)),
                                           "-o",        folder.pathOf("o.csv")};
        arguments.insert(arguments.end(), settings.begin(), settings.end());
        const Outcome run = runKrige(arguments);
        EXPECT_EQ(run.status, 0) << run.err;
        krige::ColumnReader reader(folder.pathOf("o.csv"), {"x", "y", "a", "b"});
        Columns columns;
        reader.read(columns, targets.front().size() + 1);
        return columns;
    }

    /// The same from the library, all targets in one request.
    Columns estimated(const Columns& targets, double tolerance, const std::vector<double>& scaleFactors, int drift,
                      double range, double nugget, int nearest)
    {
        ValueArrays inputs(sampleInputs);
        ValueArrays outputs(sampleOutputs);
        ValueArrays coordinates(targets);
        ValueArrays results(2, targets.front().size());
        KrigingSurrogateModel model(inputs.arrays(), outputs.arrays(), 60, tolerance, scaleFactors, drift, range,
                                    nugget, nearest);
        const std::set<int> both{0, 1};
        model.activateDependentVariables(both);
        model.interpolateDependentValues(coordinates.arrays(), both, results.arrays(), targets.front().size());
        return {targets[0], targets[1], results[0], results[1]};
    }

    void expectSameColumns(const Columns& actual, const Columns& expected)
    {
        ASSERT_EQ(actual.size(), expected.size());
        for (std::size_t c = 0; c < expected.size(); ++c)
            EXPECT_TRUE(sameBits(actual[c], expected[c])) << "column " << c;
    }

    TemporaryFolder folder;
    Columns sampleInputs;
    Columns sampleOutputs;
    std::string samplesPath;
};

} // namespace

TEST_F(PredictBitsTest, AGlobalModelsFileHoldsTheBitsOfTheLibrary)
{
    const Columns targets = randomValues(2, 200, 0.0, 10.0, 3);

    expectSameColumns(predicted(targets, {"--duplicate-tolerance", "0", "--scale", "1,-2", "--drift", "2", "--range",
                                          "0.7", "--nugget", "0.05", "--exact"}),
                      estimated(targets, 0.0, {1.0, -2.0}, 2, 0.7, 0.05, 0));
}

TEST_F(PredictBitsTest, ALocalModelsFileHoldsTheBitsOfTheLibrary)
{
    const Columns targets = randomValues(2, 200, 0.0, 10.0, 4);

    expectSameColumns(
        predicted(targets, {"--exact", "--nearest", "9", "--scale", "1,4", "--drift", "1", "--nugget", "0.01"}),
        estimated(targets, -1.0, {1.0, 4.0}, 1, 1.0, 0.01, 9));
    // Equal factors: the library measures nearness in every input by the scale of the first one.
    expectSameColumns(predicted(targets, {"--nearest", "9", "--scale", "1,1", "--drift", "1", "--nugget", "0.01"}),
                      estimated(targets, -1.0, {1.0, 1.0}, 1, 1.0, 0.01, 9));
}

TEST_F(PredictBitsTest, WithoutSettingsTheDefaultsHold)
{
    sampleInputs[0][7] += 1.0; // apart, for nothing is merged
    samplesPath = folder.write(
        "samples.csv", csvOf("x,y,a,b", {sampleInputs[0], sampleInputs[1], sampleOutputs[0], sampleOutputs[1]}));
    const Columns targets = randomValues(2, 50, 0.0, 10.0, 5);

    expectSameColumns(predicted(targets, {"--exact"}), estimated(targets, -1.0, {}, 0, 1.0, 0.0, 0));
}

TEST_F(PredictBitsTest, RequestsInBlocksGiveTheBitsOfOneRequest)
{
    const Columns targets = randomValues(2, krige::targetsPerRequest + 1000, 0.0, 10.0, 6);

    expectSameColumns(predicted(targets, {"--nearest", "4", "--scale", "1,1", "--nugget", "0.1"}),
                      estimated(targets, -1.0, {1.0, 1.0}, 0, 1.0, 0.1, 4));
}

TEST_F(PredictBitsTest, OutputsComeInTheOrderOfTheirNames)
{
    const Outcome run = runKrige({"predict", samplesPath, "--inputs", "y,x", "--outputs", "b,a", "--nugget", "0.1",
                                  "--grid", "x=0:1:2,y=5:5:1", "-o", folder.pathOf("o.csv")});

    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(folder.read("o.csv").substr(0, 8), "y,x,b,a\n");
}

TEST_F(PredictBitsTest, ValidatePrintsTheErrorsOfTheLibrarysEstimates)
{
    const Columns targets{{1.0, 2.0}, {3.0, 4.0}};
    const Columns columns = estimated(targets, -1.0, {}, 0, 1.0, 0.1, 0);
    const std::string truth =
        folder.write("truth.csv", csvOf("x,y,a", {targets[0], targets[1], {columns[2][0] - 2.0, columns[2][1] + 1.0}}));

    const Outcome run =
        runKrige({"validate", samplesPath, "--inputs", "x,y", "--outputs", "a", "--nugget", "0.1", "--against", truth});

    ASSERT_EQ(run.status, 0) << run.err;
    std::istringstream words(run.out);
    std::string header[12];
    for (std::string& word : header)
        words >> word;
    EXPECT_THAT(header, testing::ElementsAre("output", "points", "RMSE", "MAE", "bias", "R2", "MSSE", "worst", "CRPS",
                                             "in50%", "in90%", "in95%"));
    std::string line;
    std::getline(words >> std::ws, line);
    EXPECT_THAT(line, testing::MatchesRegex("a +2 +1\\.58114 +1\\.5 +0\\.5 .* 2 .*")); // sqrt((4 + 1) / 2)
}

TEST(CommandLineTest, UsageErrorsPointToTheHelpOfTheSubcommand)
{
    const Outcome run = runKrige({"predict", "s.csv", "--inputs", "x"});

    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, HasSubstr("See 'krige predict --help'."));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST(CommandLineTest, TwentyTimesTheTargetsTakeNoMoreMemory)
{
    const TemporaryFolder folder;
    const std::string samples = folder.write("s.csv", "x,z\n0,1\n1,2\n2,4\n");
    const auto peakAfter = [&](const std::string& count)
    {
        const Outcome run = runKrige({"predict", samples, "--inputs", "x", "--outputs", "z", "--nearest", "2",
                                      "--variance", "--grid", count, "-o", folder.pathOf("o.csv")});
        EXPECT_EQ(run.status, 0) << run.err;
        rusage usage = {};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss; // in kB
    };
    const long peakOfTwoBlocks = peakAfter("100000");

    // Kept, they would take five columns of 16 MB.
    EXPECT_LT(peakAfter("2000000"), peakOfTwoBlocks + 8000);
}
#endif
