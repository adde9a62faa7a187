#include "analysis/CrossValidation.h"
#include "analysis/Folds.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/estimation/Samples.h"
#include "tests/support/BitComparison.h"

namespace
{

using fenn::analysis::assignFolds;
using fenn::analysis::crossValidate;
using fenn::analysis::Estimates;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::test::smoothSamples;

TEST(CrossValidationTest, SamplesOfAFoldAreEstimatedByTheModelOfTheOthers)
{
    const SampleSet samples = smoothSamples(23, 5);
    const ModelSettings settings{-1.0, {1.0, 2.0}, 1, 0.7, 0.1, 0};
    const std::vector<std::size_t> folds = assignFolds(23, 4, 9);

    const Estimates estimates = crossValidate(samples, settings, 4, 9, {}, {0, true});

    for (std::size_t fold = 0; fold < 4; ++fold)
    {
        std::vector<std::size_t> leftOut;
        std::vector<std::size_t> others;
        for (std::size_t i = 0; i < folds.size(); ++i)
            (folds[i] == fold ? leftOut : others).push_back(i);
        const SampleSet remaining = samples.subset(others);
        const KrigingSurrogateModel model(remaining.inputArrays(), remaining.outputArrays(),
                                          static_cast<int>(others.size()), -1.0, {1.0, 2.0}, 1, 0.7, 0.1, 0);
        std::vector<std::vector<double>> expected(2, std::vector<double>(leftOut.size()));
        std::vector<double*> arrays{expected[0].data(), expected[1].data()};
        model.interpolateDependentValues(samples.subset(leftOut).inputArrays(), {0, 1}, arrays, leftOut.size());
        for (std::size_t k = 0; k < leftOut.size(); ++k)
        {
            EXPECT_TRUE(fenn::test::sameBits(estimates.values[0][leftOut[k]], expected[0][k]));
            EXPECT_TRUE(fenn::test::sameBits(estimates.values[1][leftOut[k]], expected[1][k]));
            EXPECT_GT(estimates.variances[leftOut[k]], 0.0);
        }
    }
}

TEST(CrossValidationTest, EachFoldsModelIsShownOnce)
{
    const SampleSet samples = smoothSamples(23, 5);
    std::vector<std::size_t> shown;

    crossValidate(samples, {}, 4, 9, {}, {},
                  [&](std::size_t fold, const fenn::estimation::Estimator& estimator)
                  {
                      shown.push_back(fold);
                      EXPECT_EQ(estimator.getParts().getPoints().size(), fold < 3 ? 17U : 18U);
                  });

    EXPECT_EQ(shown, (std::vector<std::size_t>{0, 1, 2, 3}));
}

TEST(CrossValidationTest, ALinearDriftReproducesAPlaneAtSamplesLeftOut)
{
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 30, 0.0, 1.0, 11);
    std::vector<double> plane;
    for (std::size_t i = 0; i < 30; ++i)
        plane.push_back(3.0 + 2.0 * inputs[0][i] - 5.0 * inputs[1][i]);
    const SampleSet samples(inputs, {plane});

    const Estimates estimates = crossValidate(samples, {-1.0, {}, 1, 1.0, 0.0, 0}, 5, 1);

    for (std::size_t i = 0; i < 30; ++i)
        EXPECT_NEAR(estimates.values[0][i], plane[i], 1e-12); // n * epsilon * a condition of some hundreds
}

TEST(CrossValidationTest, TheSeedDecidesAndNothingElse)
{
    const SampleSet samples = smoothSamples(40, 2);

    const Estimates once = crossValidate(samples, {}, 5, 1);

    EXPECT_TRUE(fenn::test::sameBits(crossValidate(samples, {}, 5, 1).values[0], once.values[0]));
    EXPECT_FALSE(fenn::test::sameBits(crossValidate(samples, {}, 5, 2).values[0], once.values[0]));
}

TEST(CrossValidationTest, ProgressCountsFoldsAndMayStop)
{
    const SampleSet samples = smoothSamples(20, 2);
    std::vector<std::size_t> seen;
    const auto untilTheSecond = [&](std::size_t numDone, std::size_t total)
    {
        EXPECT_EQ(total, 4U);
        seen.push_back(numDone);
        return numDone < 2;
    };

    EXPECT_THROW(crossValidate(samples, {}, 4, 1, untilTheSecond), fenn::analysis::Cancelled);
    EXPECT_EQ(seen, (std::vector<std::size_t>{1, 2}));
}

TEST(CrossValidationTest, FailuresOfTheModelComeThrough)
{
    const SampleSet samples = smoothSamples(12, 2);
    const auto withQuarticDrift = [&]
    {
        crossValidate(samples, {-1.0, {}, 4, 1.0, 0.0, 0}, 4, 1);
    };

    EXPECT_EQ(fenn::test::messageOf<SurrogateModelInterface::Error>(withQuarticDrift),
              "Not enough source points to calculate drift.");
    EXPECT_THROW(crossValidate(samples, {}, 13, 1), std::invalid_argument);
    EXPECT_THROW(crossValidate(samples, {-1.0, {1.0}, 0, 1.0, 0.0, 0}, 4, 1), std::invalid_argument);
}

} // namespace
