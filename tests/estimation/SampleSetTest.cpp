#include "estimation/SampleSet.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

#include "tests/estimation/Samples.h"

namespace
{

using fenn::estimation::SampleSet;
using Columns = std::vector<std::vector<double>>;

std::string complaintAbout(const Columns& inputs, const Columns& outputs)
{
    return fenn::test::messageOf<std::invalid_argument>([&] { SampleSet(inputs, outputs); });
}

TEST(SampleSetTest, SubsetTakesTheSamplesInTheOrderAskedFor)
{
    const SampleSet samples({{1.0, 2.0, 3.0}}, {{10.0, 20.0, 30.0}});

    const SampleSet subset = samples.subset({2, 0});

    EXPECT_EQ(subset.getInput(0), (std::vector<double>{3.0, 1.0}));
    EXPECT_EQ(subset.getOutput(0), (std::vector<double>{30.0, 10.0}));
    EXPECT_THROW(samples.subset({3}), std::out_of_range);
}

TEST(SampleSetTest, SubsetsKeepWhetherTheirSamplesAreIncluded)
{
    const SampleSet samples({{1.0, 2.0, 3.0}}, {{10.0, 20.0, 30.0}}, {true, false, true});

    EXPECT_EQ(samples.subset({1, 2}).getIncludeFlags(), (std::vector<bool>{false, true}));
    EXPECT_TRUE(SampleSet({{1.0}}, {{2.0}}).subset({0}).getIncludeFlags().empty());
}

TEST(SampleSetTest, RefusesAnotherNumberOfIncludeFlags)
{
    EXPECT_EQ(fenn::test::messageOf<std::invalid_argument>(
                  [] {
                      SampleSet({{1.0, 2.0}}, {{3.0, 4.0}}, {true});
                  }),
              "there are 1 include flags for 2 samples");
}

TEST(SampleSetTest, ArraysPointIntoTheSetAndSurviveAMove)
{
    SampleSet samples({{1.0, 2.0}, {3.0, 4.0}}, {{5.0, 6.0}});
    const std::vector<double*> arrays = samples.inputArrays();

    const SampleSet moved = std::move(samples);

    ASSERT_EQ(arrays.size(), 2U);
    EXPECT_EQ(arrays[1], moved.getInput(1).data());
    EXPECT_EQ(arrays[1][0], 3.0);
    EXPECT_EQ(moved.outputArrays()[0][1], 6.0);
}

TEST(SampleSetTest, OutputVarianceDividesByOneLessThanTheCount)
{
    EXPECT_EQ(SampleSet({{0.0, 1.0}}, {{1.0, 3.0}}).calcOutputVariance(0), 2.0);
    EXPECT_TRUE(std::isnan(SampleSet({{0.0}}, {{1.0}}).calcOutputVariance(0)));
}

TEST(SampleSetTest, AnInputsRangeIsItsLargestValueLessItsSmallest)
{
    const SampleSet samples({{2.0, -3.0, 7.0}, {1.0, 1.0, 1.0}, {-1e308, 0.0, 1e308}}, {{0.0, 0.0, 0.0}});

    EXPECT_EQ(samples.calcInputRange(0), 10.0);
    EXPECT_EQ(samples.calcInputRange(1), 0.0);
    EXPECT_EQ(samples.calcInputRange(2), std::numeric_limits<double>::infinity());
}

TEST(SampleSetTest, ComplaintsSayWhatIsWrongAndWhere)
{
    EXPECT_EQ(complaintAbout({}, {{1.0}}), "samples need at least one input variable");
    EXPECT_EQ(complaintAbout({{1.0}}, {}), "samples need at least one output variable");
    EXPECT_EQ(complaintAbout({{}}, {{}}), "there are no samples");
    EXPECT_EQ(complaintAbout({{1.0, 2.0}}, {{1.0}}), "output variable 0 has 1 values, but there are 2 samples");
    EXPECT_EQ(complaintAbout({{1.0, 2.0}, {1.0, std::numeric_limits<double>::infinity()}}, {{1.0, 2.0}}),
              "input variable 1 is not finite at sample 1");
    EXPECT_EQ(complaintAbout({{1.0}}, {{std::nan("")}}), "output variable 0 is not finite at sample 0");
}

} // namespace
