// A local system that is singular: all its neighbours lie on the middle of the range, where a linear drift is zero.

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/KrigingControllerAbstract.h"
#include "tests/support/BitComparison.h"
#include "tests/support/ModelAccess.h"
#include "tests/support/ModelSample.h"
#include "tests/support/NaiveModel.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

using Lists = std::vector<std::vector<double>>;

constexpr std::size_t numTargets = 41;

/// Four samples on the middle of the range [-8, 8] of both variables, and others far from it.
class SingularNeighboursTest : public testing::Test
{
protected:
    static ModelSettings nearestThree()
    {
        ModelSettings settings;
        settings.driftOrder = 1;
        settings.nugget = 0.1;
        settings.numNearestPoints = 3;
        return settings;
    }

    static Lists soundTargets()
    {
        Lists targets = randomValues(2, numTargets, 5.0, 8.0, 51);
        return targets;
    }

    /// What the plain loops give for the three outputs, and the text of what they throw.
    NaiveRequest naiveOutcome(const Lists& targets) const
    {
        const NaiveModel naive(inputs, outputs, 9, nearestThree(), 1);
        NaiveRequest request;
        request.values.assign(3, std::vector<double>(numTargets, unwritten));
        request.failure = naive.interpolate(targets, {0, 1, 2}, numTargets, request.values);
        return request;
    }

    /// Expects the outcome of the plain loops for one output and for three, with variances and without.
    void expectOutcome(const Lists& targets, const std::string& text, std::size_t numWritten)
    {
        const NaiveRequest expected = naiveOutcome(targets);
        ASSERT_EQ(expected.failure.empty() ? "no Error" : expected.failure, text);
        for (const std::set<int>& outputVars : {std::set<int>{1}, std::set<int>{0, 1, 2}})
        {
            for (const bool wantsVariances : {false, true})
            {
                SCOPED_TRACE(testing::Message() << outputVars.size() << " outputs, variances " << wantsVariances);
                ValueArrays targetArrays(targets);
                ResultArrays values(outputVars.size(), numTargets);
                ResultArrays variances(wantsVariances ? outputVars.size() : 0, numTargets);

                EXPECT_EQ(textOfError(
                              [&]
                              {
                                  fenn::ModelAccess::getController(model).interpolate(
                                      targetArrays.arrays(), outputVars, static_cast<int>(numTargets), values.arrays(),
                                      variances.arrays());
                              }),
                          text);

                std::size_t k = 0;
                for (const int outputVar : outputVars)
                {
                    EXPECT_TRUE(sameBits(values[k], expected.values[static_cast<std::size_t>(outputVar)]));
                    if (wantsVariances)
                        expectWritten(variances[k], numWritten);
                    ++k;
                }
            }
        }
    }

    static void expectWritten(const std::vector<double>& array, std::size_t count)
    {
        const auto isUnwritten = [](double value)
        {
            return value == unwritten;
        };
        const auto middle = array.begin() + static_cast<std::ptrdiff_t>(count);
        EXPECT_TRUE(std::none_of(array.begin(), middle, isUnwritten));
        EXPECT_TRUE(std::all_of(middle, array.end(), isUnwritten));
    }

    Lists inputs{{-8.0, 8.0, 0.0, 0.0, 0.0, 0.0, 7.0, 6.0, 5.0}, {8.0, -8.0, 0.0, 0.0, 0.0, 0.0, 5.0, 7.0, 8.0}};
    Lists outputs = randomValues(3, 9, -5.0, 5.0, 52);
    ModelSample sample{inputs, outputs};
    KrigingSurrogateModel model{sample.build(nearestThree())};
};

} // namespace

TEST_F(SingularNeighboursTest, StopTheRequestAtTheirTarget)
{
    for (const std::size_t failing : {std::size_t{0}, numTargets / 2, numTargets - 1})
    {
        SCOPED_TRACE(failing);
        Lists targets = soundTargets();
        targets[0][failing] = 0.25;
        targets[1][failing] = -0.25;

        expectOutcome(targets, "Singular matrix", failing);
        expectOutcome(soundTargets(), "no Error", numTargets);
    }
}

TEST_F(SingularNeighboursTest, AreNotReachedAfterAnOverflow)
{
    Lists targets = soundTargets();
    targets[0][10] = 1e153;
    targets[0][20] = targets[1][20] = 0.0;

    expectOutcome(targets, "Value overflow", 10);
}

TEST_F(SingularNeighboursTest, ReachTheHostThroughTheInterface)
{
    Lists targets = soundTargets();
    targets[0][20] = targets[1][20] = 0.0;
    const NaiveRequest expected = naiveOutcome(targets);
    const SurrogateModelInterface& host = model;
    ValueArrays targetArrays(targets);
    ResultArrays values(1, numTargets);

    EXPECT_EQ(
        textOfError([&] { host.interpolateDependentValues(targetArrays.arrays(), {2}, values.arrays(), numTargets); }),
        "Singular matrix");

    EXPECT_TRUE(sameBits(values[0], expected.values[2]));
}
