#include "host/pictures/SurfacePicture.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include <gmock/gmock.h>

#include "host/targets/TargetSource.h"
#include "tests/host/TemporaryFolder.h"

using krige::PredictionColumn;
using krige::Quantity;
using krige::SampleTable;
using krige::SurfaceOptions;
using krige::SurfacePicture;
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

/// Estimates the sum of the inputs, standard error 1 everywhere, and keeps what it was asked.
struct SumModel
{
    void predict(const std::vector<PredictionColumn>& columns, const Columns& targets, Columns& results)
    {
        asked = targets;
        results.assign(columns.size(), std::vector<double>(targets[0].size(), 0.0));
        for (std::size_t c = 0; c < columns.size(); ++c)
        {
            const bool isSpread = columns[c].quantity == Quantity::StandardError;
            for (const std::vector<double>& column : targets)
                std::transform(column.begin(), column.end(), results[c].begin(), results[c].begin(),
                               std::plus<double>());
            for (double& value : results[c])
                value = isSpread                                    ? 1.0
                        : columns[c].quantity == Quantity::LowerEnd ? value - 2
                        : columns[c].quantity == Quantity::UpperEnd ? value + 2
                                                                    : value;
        }
    }

    Columns asked{};
    double reach = 1e300; // of every sample, from the origin in the first input
};

struct Request
{
    SurfaceOptions options{};
    std::string units{};
    std::string grid{}; // empty: targets of a file
    Columns targets{};  // of the file
    bool areLogarithms = false;
};

/// The gnuplot script of a picture; a grid's estimates are its own, so that they are seen to be taken.
std::string scriptOf(const SampleTable& samples, SumModel& model, Request request = {})
{
    const TemporaryFolder folder;
    request.options.path = folder.pathOf("p.gp");
    const std::vector<PredictionColumn> table = krige::choosePredictionColumns(samples.outputNames, {});
    krige::GridSpec grid;
    if (!request.grid.empty())
    {
        grid = krige::parseGridSpec(request.grid, samples.inputNames);
        krige::spanSamples(grid, samples.inputs);
    }
    SurfacePicture picture(samples, request.options, {request.units, 95.0, request.areLogarithms}, table,
                           request.grid.empty() ? nullptr : &grid, 0);
    Columns targets = request.targets;
    Columns values;
    if (!request.grid.empty())
        krige::GridTargets(grid, samples.inputNames).read(targets, 1000000);
    if (!targets.empty())
    {
        model.predict(table, targets, values);
        picture.collect(targets, values);
    }
    model.asked.clear();
    picture.draw({[&](const Columns& places, Columns& results)
                  { model.predict(picture.getColumns(), places, results); },
                  [&](const Columns& places)
                  {
                      std::vector<bool> areWithin;
                      for (const double x : places[0])
                          areWithin.push_back(x < model.reach);
                      return areWithin;
                  }});
    return folder.read("p.gp");
}

SampleTable square()
{
    return {"s.csv", {"x", "y"}, {"z [mm]"}, {{0, 4, 0, 4}, {0, 0, 2, 2}}, {{1, 2, 3, 4}}};
}

} // namespace

TEST(SurfacePictureTest, UnitsStandBesideEveryName)
{
    const SampleTable samples{"s.csv", {"x", "y", "d [km]"}, {"z [mm]"}, {{1, 3}, {5, 7}, {1, 2}}, {{0, 5}}};
    SumModel model;
    Request request;
    request.units = "m";
    const std::string script = scriptOf(samples, model, request);

    EXPECT_THAT(script, HasSubstr("'d = 1.5 m'"));
    EXPECT_THAT(script, HasSubstr("'x (m)'"));
    EXPECT_THAT(script, HasSubstr("'z (mm)'"));
    request.units.clear();
    request.options.outputUnits = {"l"};
    EXPECT_THAT(scriptOf(samples, model, request), HasSubstr("'d = 1.5 km'"));
    EXPECT_THAT(scriptOf(samples, model, request), HasSubstr("'z (l)'"));
}

TEST(SurfacePictureTest, OneInputIsDrawnAsALineInABandOverTheBox)
{
    const SampleTable samples{"s.csv", {"depth"}, {"z"}, {{1, 3}}, {{0, 5}}};
    SumModel model;
    const std::string script = scriptOf(samples, model);

    EXPECT_THAT(script, HasSubstr("'depth'"));
    EXPECT_THAT(script, HasSubstr("using 1:2 with lines lw 2.5"));
    EXPECT_THAT(script, HasSubstr("with filledcurves lc rgb '#a6d3cf' title '95 % interval'"));
    EXPECT_THAT(script, HasSubstr("\n1 -1 3\n")); // the interval at 1
    EXPECT_EQ(model.asked[0].front(), 1.0);
    EXPECT_EQ(model.asked[0].back(), 3.0);
}

TEST(SurfacePictureTest, BeyondTheSamplesTheGroundOfALineIsGrey)
{
    const SampleTable samples{"s.csv", {"depth"}, {"z"}, {{1, 3}}, {{0, 5}}};
    SumModel model;
    model.reach = 4.0;
    Request request;
    request.grid = "depth=1:5:5";

    const std::string script = scriptOf(samples, model, request);
    EXPECT_EQ(countOf("set object rectangle", script), 1u); // 4 and 5 lie beyond the reach
    EXPECT_THAT(script, HasSubstr("from first 3.5,graph 0 to graph 1,graph 1 behind fillcolor rgb '#c8c8c8'"));
    model.reach = 4.5;
    EXPECT_EQ(countOf("set object rectangle", scriptOf(samples, model, request)), 2u);
    request.grid = "5";
    EXPECT_EQ(countOf("set object rectangle", scriptOf(samples, model, request)), 0u);
}

TEST(SurfacePictureTest, TheNodesOfAGridAreThoseThatWereEstimated)
{
    SumModel model;
    Request request;
    request.grid = "3x2";
    const std::string script = scriptOf(square(), model, request);

    EXPECT_TRUE(model.asked.empty()); // nothing is estimated twice
    EXPECT_THAT(script, HasSubstr("<< END_OF_DATA\n0 2 4\n2 4 6\nEND_OF_DATA\n"));
    EXPECT_THAT(script, HasSubstr("matrix using (0+2*$1):(0+2*$2):3 with image @largeCells"));
    EXPECT_THAT(script, HasSubstr("set xrange [-1:5]")); // half a cell around the nodes
}

TEST(SurfacePictureTest, WhatTheTableLacksIsEstimatedAtTheNodes)
{
    SumModel model;
    Request request;
    request.grid = "3x2";
    request.options.withStandardErrors = true;
    const std::string script = scriptOf(square(), model, request);

    EXPECT_EQ(model.asked[0].size(), 6u);
    EXPECT_EQ(countOf("with image", script), 2u);
    EXPECT_THAT(script, HasSubstr("'standard error of z (mm)'"));
    EXPECT_THAT(script, HasSubstr("<< END_OF_DATA\n1 1 1\n1 1 1\nEND_OF_DATA\n"));
}

TEST(SurfacePictureTest, AnotherColumnIsDrawnInItsOwnColours)
{
    SumModel model;
    Request request;
    request.grid = "3x2";
    request.options.quantity = Quantity::StandardError;
    request.areLogarithms = true;

    EXPECT_THAT(scriptOf(square(), model, request), HasSubstr("'standard error of ln z'"));
    EXPECT_THAT(scriptOf(square(), model, request), HasSubstr("#662506"));
    request.options.quantity = Quantity::LowerEnd;
    EXPECT_THAT(scriptOf(square(), model, request), HasSubstr("'lower end of the 95 % interval of z (mm)'"));
    EXPECT_THAT(scriptOf(square(), model, request), Not(HasSubstr("#662506")));
}

TEST(SurfacePictureTest, TargetsOfAFileAreDrawnAndTheBoxHoldsThem)
{
    SumModel model;
    Request request;
    request.targets = {{1, 7, std::nan("")}, {1, -3, 0}};
    const std::string script = scriptOf(square(), model, request);

    EXPECT_THAT(script, HasSubstr("<< END_OF_DATA\n1 1 2\n7 -3 4\nEND_OF_DATA\n"));
    EXPECT_THAT(script, HasSubstr("with points pt 13"));
    EXPECT_EQ(model.asked[0].back(), 7.0);
    EXPECT_EQ(model.asked[1].front(), -3.0);
}

TEST(SurfacePictureTest, SamplesAreDrawnAsAskedFor)
{
    SumModel model;
    Request request;
    request.grid = "30x20";
    EXPECT_THAT(scriptOf(square(), model, request), HasSubstr("with points pt 7"));
    EXPECT_THAT(scriptOf(square(), model, request), Not(HasSubstr("with labels")));
    request.options.points = krige::PointStyle::None;
    EXPECT_THAT(scriptOf(square(), model, request), Not(HasSubstr("with points")));
    request.options.points = krige::PointStyle::Values;
    const SampleTable inside{"s.csv", {"x", "y"}, {"z"}, {{0, 4, 0, 4, 2}, {0, 0, 2, 2, 1}}, {{1, 2, 3, 4, 5.5}}};
    EXPECT_THAT(scriptOf(inside, model, request), HasSubstr(" 5.5\n"));
    EXPECT_THAT(scriptOf(inside, model, request), HasSubstr("with labels boxed"));
}

TEST(SurfacePictureTest, ContoursAreDrawnAsAskedFor)
{
    SumModel model;
    Request request;
    request.grid = "30x20";
    EXPECT_THAT(scriptOf(square(), model, request), Not(HasSubstr("lc rgb '#80000000'")));
    request.options.withContours = true;
    const std::string script = scriptOf(square(), model, request);
    EXPECT_THAT(script, HasSubstr("lc rgb '#80000000'"));
    EXPECT_THAT(script, HasSubstr("with labels boxed"));
}

TEST(SurfacePictureTest, ThreeInputsAreDrawnAsASlicePerPairTheThirdAtItsMean)
{
    const SampleTable samples{"s.csv", {"x", "y", "h"}, {"z"}, {{0, 4, 2}, {0, 2, 1}, {0, 3, 0}}, {{0, 0, 0}}};
    SumModel model;
    const std::string script = scriptOf(samples, model);

    EXPECT_EQ(countOf("with image", script), 3u);
    EXPECT_THAT(script, HasSubstr("'h = 1'"));
    EXPECT_THAT(script, HasSubstr("'x = 2'"));
}

TEST(SurfacePictureTest, AnInputWithOneValueIsNotVaried)
{
    const SampleTable samples{"s.csv", {"x", "y"}, {"z"}, {{0, 4, 2}, {5, 5, 5}}, {{0, 0, 0}}};
    SumModel model;
    const std::string script = scriptOf(samples, model);

    EXPECT_THAT(script, Not(HasSubstr("with image")));
    EXPECT_EQ(model.asked[1], std::vector<double>(model.asked[0].size(), 5.0));
}

TEST(SurfacePictureTest, EveryOutputHasAPanelUpToSixteen)
{
    SampleTable samples{"s.csv", {"x", "y"}, {}, {{0, 1, 2}, {0, 2, 1}}, {}};
    for (int w = 0; w < 20; ++w)
    {
        samples.outputNames.push_back("z" + std::to_string(w));
        samples.outputs.push_back({0, 0, 0});
    }
    SumModel model;

    EXPECT_EQ(countOf("with image", scriptOf(samples, model)), 16u);
}

TEST(SurfacePictureTest, SamplesAwayFromASliceAreNotDrawnOnIt)
{
    // The mean of h is 50; only the sample at 50 lies within a tenth of the box of it.
    const SampleTable samples{"s.csv", {"x", "y", "h"}, {"z"}, {{0, 4, 1.5}, {0, 2, 1.25}, {0, 100, 50}}, {{0, 0, 0}}};
    SumModel model;
    const std::string script = scriptOf(samples, model);

    EXPECT_EQ(countOf("\n1.5 1.25\n", script), 1u);
    EXPECT_EQ(countOf("\n4 2\n", script), 0u);
}

TEST(SurfacePictureTest, WhatSamplesDoNotSurroundIsHatchedAndDoesNotTakeTheColours)
{
    // The corner opposite to the first sample has none: the sum is 6 there, and at most 4 among the samples.
    const SampleTable corner{"s.csv", {"x", "y"}, {"z"}, {{0, 4, 0}, {0, 0, 2}}, {{0, 0, 0}}};
    SumModel model;
    Request request;
    request.grid = "5x5";

    const std::string script = scriptOf(corner, model, request);
    EXPECT_THAT(script, HasSubstr("set cbrange [0:4]"));
    EXPECT_THAT(script, HasSubstr("with lines lw 1 dt (8, 6)"));
    EXPECT_THAT(script, HasSubstr("with vectors nohead"));
    EXPECT_THAT(script, HasSubstr("set object 1 polygon")); // something is above the colours
    const std::string fullScript = scriptOf(square(), model, request);
    EXPECT_THAT(fullScript, HasSubstr("set cbrange [0:6]"));
    EXPECT_THAT(fullScript, Not(HasSubstr("with lines lw 1 dt")));
    EXPECT_THAT(fullScript, Not(HasSubstr("with vectors")));
}

TEST(SurfacePictureTest, WhereNoSampleIsWithinReachTheMapIsGrey)
{
    SumModel model;
    model.reach = 7.0;
    Request request;
    request.grid = "x=0:8:3,y=0:2:2"; // 8 lies beyond the reach, 4 on the rim
    const std::string script = scriptOf(square(), model, request);

    EXPECT_THAT(script, HasSubstr("<< END_OF_DATA\n0 0 255\n0 0 255\nEND_OF_DATA\n"));
    EXPECT_THAT(script, HasSubstr("<< END_OF_DATA\n0 4 nan\n2 6 nan\nEND_OF_DATA\n"));
    EXPECT_THAT(script, HasSubstr("with rgbalpha @largeCells"));
}
