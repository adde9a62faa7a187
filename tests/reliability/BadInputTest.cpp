// What a host gets for input that it should not hand over: the documented error, or the number that the written
// formulas give. Run under the address and undefined-behaviour sanitizers, these cases also show that nothing else
// happens.

#include <cmath>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <QThread>
#include <gtest/gtest.h>

#include "tests/reliability/BadInputCases.h"
#include "tests/support/BitComparison.h"
#include "tests/support/ModelSample.h"
#include "tests/support/NaiveModel.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

const std::string noError = "no Error";

std::string orNoError(const std::string& text)
{
    return text.empty() ? noError : text;
}

class BadInputTest : public testing::TestWithParam<BadInput>
{
protected:
    std::set<int> allOutputs() const
    {
        std::set<int> outputVars;
        for (std::size_t o = 0; o < GetParam().outputs.size(); ++o)
            outputVars.insert(static_cast<int>(o));
        return outputVars;
    }

    /// The estimates before the first failing target; what was there, from it on.
    std::string request(const SurrogateModelInterface& model, std::vector<std::vector<double>>& values) const
    {
        ValueArrays targets(GetParam().targets);
        ResultArrays results(GetParam().outputs.size(), numTargets);
        const std::string text = textOfError(
            [&] { model.interpolateDependentValues(targets.arrays(), allOutputs(), results.arrays(), numTargets); });
        for (std::size_t o = 0; o < values.size(); ++o)
            values[o] = results[o];
        return text;
    }

    static void expectNumbers(const std::vector<std::vector<double>>& values, Numbers expected)
    {
        bool hasFinite = false;
        bool hasNaN = false;
        for (const std::vector<double>& output : values)
        {
            for (const double value : output)
            {
                hasFinite = hasFinite || std::isfinite(value);
                hasNaN = hasNaN || std::isnan(value);
            }
        }
        EXPECT_EQ(hasFinite, expected == Numbers::finite || expected == Numbers::ofBothKinds);
        EXPECT_EQ(hasNaN, expected == Numbers::notANumber || expected == Numbers::ofBothKinds);
    }

    const std::size_t numTargets = GetParam().targets[0].size();
};

std::string nameOf(const testing::TestParamInfo<BadInput>& info)
{
    return info.param.name;
}

} // namespace

TEST_P(BadInputTest, GivesTheDocumentedErrorOrNumber)
{
    const BadInput& input = GetParam();
    ModelSample sample(input.inputs, input.outputs);
    sample.numPts = input.numPts.value_or(sample.numPts);
    ASSERT_EQ(sample.failureOf(input.settings), input.outcome.constructionError);
    if (!input.outcome.constructionError.empty())
        return;
    const NaiveModel naive(input.inputs, input.outputs, sample.numPts, input.settings, QThread::idealThreadCount());
    ASSERT_EQ(naive.getFailure(), "");
    std::vector<std::vector<double>> expected(input.outputs.size(), std::vector<double>(numTargets, unwritten));
    const std::string expectedText = naive.interpolate(input.targets, allOutputs(), numTargets, expected);
    const KrigingSurrogateModel model = sample.build(input.settings);
    std::vector<std::vector<double>> values(input.outputs.size());

    const std::string text = request(model, values);

    EXPECT_EQ(text, orNoError(input.outcome.requestError));
    EXPECT_EQ(orNoError(expectedText), text);
    for (std::size_t o = 0; o < values.size(); ++o)
        EXPECT_TRUE(sameBits(values[o], expected[o])) << "output " << o;
    if (text == noError)
        expectNumbers(values, input.outcome.numbers);
}

INSTANTIATE_TEST_SUITE_P(Samples, BadInputTest, testing::ValuesIn(badSampleCases()), nameOf);
INSTANTIATE_TEST_SUITE_P(Settings, BadInputTest, testing::ValuesIn(badSettingCases()), nameOf);
INSTANTIATE_TEST_SUITE_P(Targets, BadInputTest, testing::ValuesIn(badTargetCases()), nameOf);
