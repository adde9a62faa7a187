#include "host/pictures/SurfacePicture.h"

#include <algorithm>

#include <gmock/gmock.h>

#include "tests/host/TemporaryFolder.h"

using krige::PictureAxis;
using krige::SampleTable;
using krige::test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;

namespace
{

using Columns = std::vector<std::vector<double>>;

std::size_t countOf(const std::string& part, const std::string& text)
{
    std::size_t count = 0;
    for (std::size_t i = text.find(part); i != std::string::npos; i = text.find(part, i + 1))
        ++count;
    return count;
}

/// Estimates the sum of the inputs, and keeps what it was asked.
struct SumEstimator
{
    void operator()(const Columns& targets, Columns& results)
    {
        asked = targets;
        results.assign(numOutputs, std::vector<double>(targets[0].size(), 0.0));
        for (std::vector<double>& result : results)
        {
            for (const std::vector<double>& column : targets)
                std::transform(column.begin(), column.end(), result.begin(), result.begin(), std::plus<double>());
        }
    }

    std::size_t numOutputs = 1;
    Columns asked{};
};

/// The gnuplot script of a picture over the samples' box.
std::string scriptOf(const SampleTable& samples, SumEstimator& estimator, const std::string& units = "")
{
    const TemporaryFolder folder;
    krige::drawSurface(folder.pathOf("p.gp"), samples, krige::boxOfSamples(samples), units,
                       [&](const Columns& targets, Columns& results) { estimator(targets, results); });
    return folder.read("p.gp");
}

} // namespace

TEST(SurfacePictureTest, TheBoxReachesFromTheLeastToTheGreatestSample)
{
    const SampleTable samples{"s.csv", {"x", "y"}, {"z"}, {{3, 1, 2}, {7, 7, 7}}, {{0, 0, 0}}};
    const std::vector<PictureAxis> box = krige::boxOfSamples(samples);

    EXPECT_EQ(box[0].low, 1.0);
    EXPECT_EQ(box[0].high, 3.0);
    EXPECT_EQ(box[1].low, 7.0);
    EXPECT_EQ(box[1].high, 7.0);
}

TEST(SurfacePictureTest, TheUnitStandsBesideEveryInput)
{
    const SampleTable samples{"s.csv", {"x", "y", "d"}, {"z"}, {{1, 3}, {5, 7}, {1, 2}}, {{0, 5}}};
    SumEstimator estimator;
    const std::string script = scriptOf(samples, estimator, "m");

    EXPECT_THAT(script, HasSubstr("set title 'z, d = 1.5 m'\nset xlabel 'x (m)'\nset ylabel 'y (m)'\n"));
}

TEST(SurfacePictureTest, OneInputIsDrawnAsALineOverTheBox)
{
    const SampleTable samples{"s.csv", {"depth"}, {"z"}, {{1, 3}}, {{0, 5}}};
    SumEstimator estimator;
    const std::string script = scriptOf(samples, estimator);

    EXPECT_THAT(script, HasSubstr("set xlabel 'depth'"));
    EXPECT_THAT(script, HasSubstr("using 1:2 with lines lw 2.5"));
    EXPECT_EQ(estimator.asked[0].front(), 1.0);
    EXPECT_EQ(estimator.asked[0].back(), 3.0);
}

TEST(SurfacePictureTest, TwoInputsAreDrawnAsASurfaceWithTheSamplesOverIt)
{
    const SampleTable samples{"s.csv", {"x", "y"}, {"z"}, {{0, 4, 1}, {0, 2, 1}}, {{0, 0, 0}}};
    SumEstimator estimator;
    const std::string script = scriptOf(samples, estimator);

    EXPECT_EQ(countOf("with image", script), 1u);
    EXPECT_THAT(script, HasSubstr("with points pt 7"));
    EXPECT_EQ(estimator.asked[0].size(), estimator.asked[1].size());
    EXPECT_EQ(estimator.asked[0].back(), 4.0);
    EXPECT_EQ(estimator.asked[1].back(), 2.0);
}

TEST(SurfacePictureTest, ThreeInputsAreDrawnAsASlicePerPairTheThirdAtItsMean)
{
    const SampleTable samples{"s.csv", {"x", "y", "h"}, {"z"}, {{0, 4, 2}, {0, 2, 1}, {0, 3, 0}}, {{0, 0, 0}}};
    SumEstimator estimator;
    const std::string script = scriptOf(samples, estimator);

    EXPECT_EQ(countOf("with image", script), 3u);
    EXPECT_THAT(script, HasSubstr("set title 'z, h = 1'"));
    EXPECT_THAT(script, HasSubstr("set title 'z, x = 2'"));
}

TEST(SurfacePictureTest, AnInputWithOneValueIsNotVaried)
{
    const SampleTable samples{"s.csv", {"x", "y"}, {"z"}, {{0, 4, 2}, {5, 5, 5}}, {{0, 0, 0}}};
    SumEstimator estimator;
    const std::string script = scriptOf(samples, estimator);

    EXPECT_THAT(script, Not(HasSubstr("with image")));
    EXPECT_EQ(estimator.asked[1], std::vector<double>(estimator.asked[0].size(), 5.0));
}

TEST(SurfacePictureTest, EveryOutputHasAPanelUpToSixteen)
{
    SampleTable samples{"s.csv", {"x", "y"}, {}, {{0, 1, 2}, {0, 2, 1}}, {}};
    for (int w = 0; w < 20; ++w)
    {
        samples.outputNames.push_back("z" + std::to_string(w));
        samples.outputs.push_back({0, 0, 0});
    }
    SumEstimator estimator{20};

    EXPECT_EQ(countOf("with image", scriptOf(samples, estimator)), 16u);
}

TEST(SurfacePictureTest, SamplesAwayFromASliceAreNotDrawnOnIt)
{
    // The mean of h is 50; only the sample at 50 lies within a tenth of the box of it.
    const SampleTable samples{"s.csv", {"x", "y", "h"}, {"z"}, {{0, 4, 1.5}, {0, 2, 1.25}, {0, 100, 50}}, {{0, 0, 0}}};
    SumEstimator estimator;
    const std::string script = scriptOf(samples, estimator);

    EXPECT_EQ(countOf("\n1.5 1.25\n", script), 1u);
    EXPECT_EQ(countOf("\n4 2\n", script), 0u);
}

TEST(SurfacePictureTest, ColoursSpanWhatSamplesSurroundAndADashedLineShowsTheRest)
{
    // The corner opposite to the first sample has none: the sum is 6 there, and at most 4 among the samples.
    const SampleTable corner{"s.csv", {"x", "y"}, {"z"}, {{0, 4, 0}, {0, 0, 2}}, {{0, 0, 0}}};
    const SampleTable full{"s.csv", {"x", "y"}, {"z"}, {{0, 4, 0, 4}, {0, 0, 2, 2}}, {{0, 0, 0, 0}}};
    SumEstimator estimator;

    const std::string script = scriptOf(corner, estimator);
    EXPECT_THAT(script, HasSubstr("set cbrange [0:4]"));
    EXPECT_THAT(script, HasSubstr("with lines dt (8, 6)"));
    const std::string fullScript = scriptOf(full, estimator);
    EXPECT_THAT(fullScript, HasSubstr("set cbrange [0:6]"));
    EXPECT_THAT(fullScript, Not(HasSubstr("with lines dt")));
}
