#include "host/pictures/PictureOptions.h"

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include "host/text/HostErrors.h"

using krige::PointStyle;
using krige::Quantity;
using krige::SurfaceOptions;
using krige::UsageError;

namespace
{

SurfaceOptions parse(const std::vector<std::string>& words)
{
    CLI::App app;
    SurfaceOptions options;
    krige::addPictureOptions(app, options, "Picture:");
    krige::addSurfaceOptions(app, options);
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    return options;
}

std::string messageOf(const std::vector<std::string>& words)
{
    try
    {
        parse(words);
    }
    catch (const UsageError& error)
    {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(PictureOptionsTest, WithoutOptionsDotsAndEstimatesAreDrawn)
{
    const SurfaceOptions options = parse({});

    EXPECT_TRUE(options.path.empty());
    EXPECT_EQ(options.quantity, Quantity::Estimate);
    EXPECT_EQ(options.points, PointStyle::Dots);
    EXPECT_FALSE(options.withContours);
    EXPECT_FALSE(options.withStandardErrors);
    EXPECT_EQ(options.unitOf(3), "");
}

TEST(PictureOptionsTest, EveryOptionIsTaken)
{
    const SurfaceOptions options =
        parse({"--plot", "p.pdf", "--title", " Zinc ", "--plot-size", "300x400", "--output-units", "ppm,\"a,b\"",
               "--plot-column", "hi", "--contours", "--points", "values"});

    EXPECT_EQ(options.path, "p.pdf");
    EXPECT_EQ(options.title, "Zinc");
    EXPECT_EQ(options.size.height, 400);
    EXPECT_EQ(options.unitOf(1), "a,b");
    EXPECT_EQ(options.quantity, Quantity::UpperEnd);
    EXPECT_TRUE(options.withContours);
    EXPECT_EQ(options.points, PointStyle::Values);
}

TEST(PictureOptionsTest, OtherWordsAreNamedWithThoseThereAre)
{
    EXPECT_EQ(messageOf({"--plot", "p.png", "--plot-column", "error"}),
              "--plot-column: must be estimate, stderr, variance, lo or hi, not 'error'");
    EXPECT_EQ(messageOf({"--plot", "p.png", "--points", "all"}), "--points: must be none, dots or values, not 'all'");
    EXPECT_EQ(messageOf({"--plot", "p.png", "--title", "  "}), "--title: needs a text of one line, not '  '");
    EXPECT_EQ(messageOf({"--plot", "p.png", "--title", "a\nb"}), "--title: needs a text of one line, not 'a?b'");
    EXPECT_EQ(messageOf({"--plot", "p.png", "--plot-size", "10x10"}),
              "--plot-size: needs width and height in pixels, each from 200 to 10000, such as 1200x900, not '10x10'");
}

TEST(PictureOptionsTest, WhatSaysHowAPictureLooksNeedsOne)
{
    for (const char* flag : {"--contours", "--plot-both"})
        EXPECT_THROW(parse({flag}), CLI::RequiresError) << flag;
    for (const char* option : {"--title", "--plot-column", "--points", "--plot-size"})
        EXPECT_THROW(parse({option, option == std::string("--plot-size") ? "300x300"
                                    : option == std::string("--points")  ? "dots"
                                                                         : "stderr"}),
                     CLI::RequiresError)
            << option;
}

TEST(PictureOptionsTest, BothAndOneColumnExcludeEachOther)
{
    EXPECT_THROW(parse({"--plot", "p.png", "--plot-both", "--plot-column", "stderr"}), CLI::ExcludesError);
}

TEST(CheckPictureOptionsTest, EveryOutputNeedsItsUnit)
{
    SurfaceOptions options;
    options.outputUnits = {"mm"};

    EXPECT_NO_THROW(krige::checkPictureOptions(options, 1));
    EXPECT_THROW(krige::checkPictureOptions(options, 2), UsageError);
}
