// Sets without members, and one array in several places.

#include <limits>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/BitComparison.h"
#include "tests/support/ModelSample.h"
#include "tests/support/RequestArrays.h"

using namespace fenn::test;

namespace
{

using Lists = std::vector<std::vector<double>>;

constexpr std::size_t numTargets = 70;

/// The argument: how many nearest points, 0 for a global model.
class EmptyAndRepeatedTest : public testing::TestWithParam<int>
{
protected:
    ModelSettings settings() const
    {
        ModelSettings result;
        result.nugget = 0.5;
        result.numNearestPoints = GetParam();
        return result;
    }

    ModelSample sample{randomValues(2, 20, 0.0, 1.0, 61), randomValues(2, 20, -5.0, 5.0, 62)};
    const Lists targets = randomValues(2, numTargets, 0.0, 1.0, 63);
};

std::string nameOf(const testing::TestParamInfo<int>& info)
{
    return info.param == 0 ? "Global" : "Local";
}

} // namespace

TEST_P(EmptyAndRepeatedTest, WithoutInputVariablesEveryTargetIsTheMeanOfThePointsUsed)
{
    std::vector<double> samples{1.0, 2.0, 6.0, 11.0, 30.0};
    const double mean = GetParam() == 0 ? 10.0 : 5.0; // of all five, or of the first four
    const int numNearest = GetParam() == 0 ? 0 : 4;
    for (const int driftOrder : {0, 1, std::numeric_limits<int>::max()})
    {
        for (const double tolerance : {-1.0, 0.0})
        {
            const KrigingSurrogateModel model({}, {samples.data()}, 5, tolerance, {}, driftOrder, 1.0, 0.5, numNearest);
            ResultArrays values(1, numTargets);

            model.interpolateDependentValues({}, {0}, values.arrays(), numTargets);

            for (const double value : values[0])
                EXPECT_NEAR(value, mean, 1e-13); // weights of 1/5 or 1/4 up to rounding
        }
    }
}

TEST_P(EmptyAndRepeatedTest, WithoutInputVariablesAndPointsThereAreNotEnoughPoints)
{
    EXPECT_THROW(KrigingSurrogateModel({}, {}, 0, 0.0, {}, 0, 1.0, 0.5, GetParam()), SurrogateModelInterface::Error);
}

TEST_P(EmptyAndRepeatedTest, WithoutOutputVariablesARequestWritesNothing)
{
    const KrigingSurrogateModel model(sample.inputs.arrays(), {}, 20, 0.0, {}, 0, 1.0, 0.5, GetParam());
    ValueArrays targetArrays(targets);
    std::vector<double*> none;

    EXPECT_NO_THROW(model.interpolateDependentValues(targetArrays.arrays(), {}, none, numTargets));
    EXPECT_TRUE(none.empty());
}

TEST_P(EmptyAndRepeatedTest, OneArrayForTwoOutputsHoldsTheSecond)
{
    const KrigingSurrogateModel model = sample.build(settings());
    ValueArrays targetArrays(targets);
    ResultArrays values(1, numTargets);
    std::vector<double*> twice(2, values.arrays()[0]);

    model.interpolateDependentValues(targetArrays.arrays(), {0, 1}, twice, numTargets);

    EXPECT_TRUE(sameBits(values[0], estimatesOf(model, targets, {1})[0]));
}

TEST_P(EmptyAndRepeatedTest, ResultsMayReplaceTheTargetsOwnCoordinates)
{
    const KrigingSurrogateModel model = sample.build(settings());
    ValueArrays targetArrays(targets);

    model.interpolateDependentValues(targetArrays.arrays(), {0, 1}, targetArrays.arrays(), numTargets);

    const Lists expected = estimatesOf(model, targets, {0, 1});
    EXPECT_TRUE(sameBits(targetArrays[0], expected[0]));
    EXPECT_TRUE(sameBits(targetArrays[1], expected[1]));
}

TEST_P(EmptyAndRepeatedTest, OneArrayForEveryInputAndOutputGivesTheBitsOfCopies)
{
    std::vector<double>& only = sample.inputs[0];
    const KrigingSurrogateModel model({only.data(), only.data()}, {only.data()}, 20, -1.0, {}, 0, 1.0, 0.5, GetParam());
    ModelSample copies({only, only}, {only});
    std::vector<double> diagonal = targets[0];
    ResultArrays values(1, numTargets);

    model.interpolateDependentValues({diagonal.data(), diagonal.data()}, {0}, values.arrays(), numTargets);

    const Lists expected = estimatesOf(copies.build(settings()), {diagonal, diagonal}, {0});
    EXPECT_TRUE(sameBits(values[0], expected[0]));
}

INSTANTIATE_TEST_SUITE_P(Strategies, EmptyAndRepeatedTest, testing::Values(0, 9), nameOf);
