// What several threads of a host may do at once: have models of their own, and ask one global model.

#include <atomic>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/reliability/StartingGate.h"
#include "tests/support/BitComparison.h"
#include "tests/support/ModelSample.h"
#include "tests/support/RequestArrays.h"
#include "tests/support/ThreadCount.h"
#include "tests/support/ThrownError.h"

using namespace fenn::test;

namespace
{

using Lists = std::vector<std::vector<double>>;

/// A request's results, and the text of what it throws.
struct Answer
{
    Lists values;
    std::string text;
};

Answer ask(const SurrogateModelInterface& model, const Lists& targets, const std::set<int>& outputVars)
{
    ValueArrays targetArrays(targets);
    ResultArrays results(outputVars.size(), targets[0].size());
    Answer answer;
    answer.text = textOfError(
        [&]
        { model.interpolateDependentValues(targetArrays.arrays(), outputVars, results.arrays(), targets[0].size()); });
    for (std::size_t k = 0; k < outputVars.size(); ++k)
        answer.values.push_back(results[k]);
    return answer;
}

/// For the calling thread alone: EXPECT is left to the test's own.
bool isSame(const Answer& actual, const Answer& expected)
{
    bool result = actual.text == expected.text && actual.values.size() == expected.values.size();
    for (std::size_t k = 0; result && k < actual.values.size(); ++k)
        result = sameBits(actual.values[k], expected.values[k]);
    return result;
}

/// Builds the model of that number, asks it twice and destroys it. Of every four, the first merges its samples, the
/// second has enough of them to share its factorisation among threads (one in four of those), the third and the fourth
/// are local; the fourth fails in the middle of its request.
Answer answerOfModel(std::size_t number)
{
    const std::size_t kind = number % 4;
    const std::size_t numInputVars = 1 + number % 3;
    const std::size_t numPts = number % 16 == 1 ? 270 : 20 + number;
    Lists inputs = randomValues(numInputVars, numPts, 0.0, 1.0, 100 + number);
    if (kind == 0)
    {
        for (std::vector<double>& variable : inputs)
            variable[5] = variable[11] = variable[17];
    }
    ModelSample sample(inputs, randomValues(2, numPts, -5.0, 5.0, 200 + number));
    ModelSettings settings;
    settings.duplicateTolerance = kind == 0 ? 0.0 : -1.0;
    settings.driftOrder = kind == 3 ? 1 : static_cast<int>(number % 2);
    settings.nugget = 0.01;
    settings.numNearestPoints = kind >= 2 ? 9 : 0;
    Lists targets = randomValues(numInputVars, 40, 0.0, 1.0, 300 + number);
    if (kind == 3)
        targets[0][25] = 1e153;

    KrigingSurrogateModel model = sample.build(settings);
    model.activateDependentVariables({0, 1});
    const Answer first = ask(model, targets, {0, 1});
    model.activateDependentVariables({1});
    const Answer second = ask(model, targets, {1});
    return {{first.values[0], first.values[1], second.values[0]}, first.text + ", " + second.text};
}

/// The targets of one thread of several that ask one model; those of every third overflow.
Lists targetsOfThread(std::size_t thread)
{
    Lists targets = randomValues(2, 50 + 10 * thread, 0.0, 1.0, 400 + thread);
    if (thread % 3 == 2)
        targets[0][7 * thread] = 1e153;
    return targets;
}

KrigingSurrogateModel buildSharedModel(ModelSample& sample)
{
    ModelSettings settings;
    settings.driftOrder = 1;
    return sample.build(settings);
}

} // namespace

TEST(HostThreadsTest, SixtyFourModelsOnEightThreadsAnswerAsOneAfterTheOther)
{
    constexpr std::size_t numModels = 64;
    answerOfModel(0); // on a thread that stays: see fenn_first_use for one that does not
    std::vector<Answer> answers(numModels);
    std::atomic<std::size_t> next{0};

    runOnHostThreads(8,
                     [&](std::size_t)
                     {
                         for (std::size_t m = next.fetch_add(1, std::memory_order_relaxed); m < numModels;
                              m = next.fetch_add(1, std::memory_order_relaxed))
                             answers[m] = answerOfModel(m);
                     });

    for (std::size_t m = 0; m < numModels; ++m)
    {
        SCOPED_TRACE(m);
        const Answer expected = answerOfModel(m);
        EXPECT_EQ(answers[m].text, m % 4 == 3 ? "Value overflow, Value overflow" : "no Error, no Error");
        EXPECT_TRUE(isSame(answers[m], expected));
    }
}

TEST(HostThreadsTest, OneGlobalModelGivesEachThreadItsOwnResultsAndItsOwnFailure)
{
    constexpr std::size_t numHostThreads = 6;
    constexpr std::size_t numRounds = 25;
    ModelSample sample(randomValues(2, 40, 0.0, 1.0, 71), randomValues(3, 40, -5.0, 5.0, 72));
    const KrigingSurrogateModel model = buildSharedModel(sample);
    std::vector<Answer> expected;
    for (std::size_t t = 0; t < numHostThreads; ++t)
        expected.push_back(ask(model, targetsOfThread(t), {0, 2}));
    std::vector<std::size_t> numRight(numHostThreads, 0);

    runOnHostThreads(numHostThreads,
                     [&](std::size_t t)
                     {
                         const Lists targets = targetsOfThread(t);
                         for (std::size_t round = 0; round < numRounds; ++round)
                             numRight[t] += isSame(ask(model, targets, {0, 2}), expected[t]) ? 1 : 0;
                     });

    EXPECT_EQ(numRight, std::vector<std::size_t>(numHostThreads, numRounds));
    for (std::size_t t = 0; t < numHostThreads; ++t)
        EXPECT_EQ(expected[t].text, t % 3 == 2 ? "Value overflow" : "no Error");
}

TEST(HostThreadsTest, OneGlobalModelMayBeAskedForItsReportsDuringRequests)
{
    ModelSample sample(randomValues(2, 40, 0.0, 1.0, 73), randomValues(1, 40, -5.0, 5.0, 74));
    KrigingSurrogateModel model = buildSharedModel(sample);
    const Lists targets = targetsOfThread(0);
    const Answer expected = ask(model, targets, {0});
    std::vector<int> isRight(4, 0);

    runOnHostThreads(4,
                     [&](std::size_t t)
                     {
                         isRight[t] = t % 2 == 0 ? isSame(ask(model, targets, {0}), expected)
                                                 : !model.qualityMetricInformationAvailable() &&
                                                       model.surfaceCoefficientInformation(0).empty();
                     });

    EXPECT_EQ(isRight, std::vector<int>(4, 1));
}

TEST(HostThreadsTest, NoThreadIsLeftWhenSeveralHaveAskedOneModel)
{
    if (numThreadsAtStart == 0)
        GTEST_SKIP() << "the system does not list its threads";
    ModelSample sample(randomValues(2, 40, 0.0, 1.0, 75), randomValues(3, 40, -5.0, 5.0, 76));
    const KrigingSurrogateModel model = buildSharedModel(sample);

    runOnHostThreads(6, [&](std::size_t t) { ask(model, targetsOfThread(t), {0, 2}); });

    EXPECT_EQ(numThreadsLeft(), 0U);
}
