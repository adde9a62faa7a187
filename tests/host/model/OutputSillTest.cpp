#include "host/model/OutputSill.h"

#include <gtest/gtest.h>

using fenn::analysis::Sill;
using fenn::analysis::SillMethod;
using krige::OutputSill;
using krige::SillChoice;

namespace
{

using Rule = SillChoice::Rule;

OutputSill estimated(double value)
{
    return {value, 2.0, Rule::Automatic, SillMethod::RestrictedLikelihood, 10};
}

} // namespace

TEST(OutputSillTest, EachChoiceTakesItsOwnValue)
{
    const std::vector<SillChoice> choices{{Rule::Given, 7.0}, {Rule::Sample, 0.0}, {Rule::Automatic, 0.0}};
    const Sill sill{3.0, 2.0, SillMethod::LeaveOneOut, 10};

    const std::vector<OutputSill> sills = krige::applyChoices(choices, {sill, sill, sill});

    EXPECT_EQ(sills[0].value, 7.0);
    EXPECT_EQ(sills[1].value, 2.0);
    EXPECT_EQ(sills[2].value, 3.0);
    EXPECT_EQ(sills[0].sampleVariance, 2.0);
}

TEST(OutputSillTest, ADescriptionSaysWhereTheValueComesFrom)
{
    EXPECT_EQ(krige::describeSill(estimated(3.5)), "3.5 by restricted likelihood over 10 points (sample variance 2)");
    EXPECT_EQ(krige::describeSill({3.5, 2.0, Rule::Automatic, SillMethod::LeaveOneOut, 1}),
              "3.5 by leaving out each of 1 point (sample variance 2)");
    EXPECT_EQ(krige::describeSill({2.0, 2.0, Rule::Automatic, SillMethod::SampleVariance, 10}),
              "2, the sample variance, for the points determine no other");
    EXPECT_EQ(krige::describeSill({2.0, 2.0, Rule::Sample, SillMethod::SampleVariance, 10}), "2, the sample variance");
    EXPECT_EQ(krige::describeSill({7.0, 2.0, Rule::Given, SillMethod::SampleVariance, 10}),
              "7 as given (sample variance 2)");
}

TEST(OutputSillTest, FoldsAreDescribedByTheirLeastAndGreatest)
{
    EXPECT_EQ(krige::describeSillsOfFolds({estimated(3.5), estimated(2.5), estimated(3.0)}),
              "2.5 to 3.5, each fold's estimated from the samples outside it");
    EXPECT_EQ(
        krige::describeSillsOfFolds(
            {estimated(3.5), {2.0, 2.0, Rule::Automatic, SillMethod::SampleVariance, 9}, estimated(3.0)}),
        "2 to 3.5, each fold's estimated from the samples outside it; in 1 fold the sample variance, for the points "
        "determine no other");
    EXPECT_EQ(krige::describeSillsOfFolds({{2.0, 2.0, Rule::Sample, SillMethod::SampleVariance, 9},
                                           {3.0, 3.0, Rule::Sample, SillMethod::SampleVariance, 9}}),
              "2 to 3, each fold's the variance of the samples outside it");
    EXPECT_EQ(krige::describeSillsOfFolds({{7.0, 2.0, Rule::Given, SillMethod::SampleVariance, 9}}), "7 as given");
}

TEST(OutputSillTest, TheSampleVarianceStaysARule)
{
    const std::vector<SillChoice> choices =
        krige::choicesOf({{2.0, 2.0, Rule::Sample, SillMethod::SampleVariance, 9}, {7.0, 2.0, Rule::Given, {}, 9}});

    EXPECT_EQ(choices, (std::vector<SillChoice>{{Rule::Sample, 0.0}, {Rule::Given, 7.0}}));
}

TEST(OutputSillTest, ASillOfZeroIsLeftToBeEstimated)
{
    const std::vector<SillChoice> choices = krige::choicesOf({estimated(3.5), estimated(0.0)});

    EXPECT_EQ(choices, (std::vector<SillChoice>{{Rule::Given, 3.5}, {Rule::Automatic, 0.0}}));
}
