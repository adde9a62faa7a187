#include "analysis/Tuning.h"

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "estimation/Estimates.h"
#include "estimation/Estimator.h"
#include "estimation/chooseEstimator.h"

// Real data: examples/rainfall/README.md.

namespace
{

using fenn::estimation::SampleSet;

/// Columns id, x, y, rainfall, all of them whole numbers.
SampleSet readGauges(const std::string& name)
{
    const std::string path = std::string(FENN_EXAMPLES_DIR) + "/rainfall/" + name;
    std::ifstream file(path);
    std::string header;
    if (!std::getline(file, header) || header != "id,x,y,rainfall")
        throw std::runtime_error("cannot read " + path);
    std::vector<std::vector<double>> inputs(2);
    std::vector<double> rainfall;
    long id = 0;
    long x = 0;
    long y = 0;
    long amount = 0;
    char comma = 0;
    while (file >> id >> comma >> x >> comma >> y >> comma >> amount)
    {
        inputs[0].push_back(static_cast<double>(x));
        inputs[1].push_back(static_cast<double>(y));
        rainfall.push_back(static_cast<double>(amount));
    }
    return {std::move(inputs), {std::move(rainfall)}};
}

TEST(RainfallTest, TuningOnAHundredGaugesPredictsTheOthersToTheYardstick)
{
    const SampleSet samples = readGauges("samples.csv");
    const SampleSet truth = readGauges("truth.csv");
    ASSERT_EQ(samples.getNumSamples(), 100U);
    ASSERT_EQ(truth.getNumSamples(), 367U);
    const auto rmseOf = [&](const fenn::estimation::ModelSettings& settings)
    {
        const auto estimates =
            fenn::estimation::estimateAt(*fenn::estimation::chooseEstimator(samples, settings), truth);
        return fenn::analysis::calcErrorStatistics(truth.getOutput(0), estimates.values[0], {}, 1.0).rmse;
    };
    fenn::analysis::TuningOptions options;
    options.heldOutFraction = 0.0; // the others are the held-out part

    const auto result = tune(samples, {}, fenn::analysis::defaultSearchSpace(samples), options);

    EXPECT_LE(rmseOf(result.trials[result.winner].settings), 56.0);
    EXPECT_GT(rmseOf({}), 58.0); // the defaults do not reach it: the search is what does
}

} // namespace
