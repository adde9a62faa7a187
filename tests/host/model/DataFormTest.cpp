#include "host/model/DataForm.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::SampleTable;
using krige::Settings;
using krige::test::messageOf;

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

SampleTable someSamples()
{
    return {"s.csv", {"x", "y"}, {"a", "b"}, {{0, 3, 0}, {0, 0, 2}}, {{1, 2, 3}, {4, 5, 6}}, {2, 3, 5}};
}

} // namespace

TEST(DataFormTest, SamplesStayAsTheyAreUnlessAskedFor)
{
    const SampleTable formed = krige::inModelForm(someSamples(), {});

    EXPECT_FALSE(krige::hasDataForm({}));
    EXPECT_EQ(formed.inputs, someSamples().inputs);
    EXPECT_EQ(formed.outputs, someSamples().outputs);
    EXPECT_EQ(formed.inputNames, someSamples().inputNames);
}

TEST(DataFormTest, PlacesAreTurnedAndStretchedUnderNamesOfTheirOwn)
{
    Settings settings;
    settings.anisotropy.emplace(4.0, 90.0);
    const SampleTable formed = krige::inModelForm(someSamples(), settings);
    std::vector<std::vector<double>> targets = someSamples().inputs;
    krige::bringIntoModelForm(targets, settings);

    EXPECT_TRUE(krige::hasDataForm(settings));
    EXPECT_EQ(formed.inputs, (std::vector<std::vector<double>>{{0, 0, 2}, {0, -12, 0}}));
    EXPECT_EQ(targets, formed.inputs);
    EXPECT_EQ(formed.inputNames[0], "along the longer range");
    EXPECT_EQ(formed.outputs, someSamples().outputs);
    EXPECT_EQ(formed.lines, someSamples().lines);
}

TEST(DataFormTest, APlaceThatOverflowsIsNamed)
{
    SampleTable samples = someSamples();
    samples.inputs[1][1] = 1e308;
    Settings settings;
    settings.anisotropy.emplace(10.0, 0.0);

    EXPECT_EQ(messageOf<krige::InputError>([&] { krige::inModelForm(samples, settings); }),
              "s.csv, line 3: --anisotropy: the place is too far away to be rotated");
}

TEST(DataFormTest, EveryOutputIsReplacedByItsLogarithm)
{
    Settings settings;
    settings.units.areLogarithms = true;
    const SampleTable formed = krige::inModelForm(someSamples(), settings);

    EXPECT_EQ(formed.outputs[0][1], std::log(2.0));
    EXPECT_EQ(formed.outputs[1][2], std::log(6.0));
    EXPECT_EQ(formed.outputNames, (std::vector<std::string>{"ln a", "ln b"}));
    EXPECT_EQ(formed.inputs, someSamples().inputs);
}

TEST(DataFormTest, AValueWithoutALogarithmIsNamed)
{
    SampleTable samples = someSamples();
    samples.outputs[1][2] = -0.5;
    Settings settings;
    settings.units.areLogarithms = true;

    EXPECT_EQ(
        messageOf<krige::InputError>([&] { krige::inModelForm(samples, settings); }),
        "s.csv, line 5, column 'b': -0.5 has no logarithm: with --transform log every value must be above 0; leave "
        "the row out, or the transform");

    samples.outputs[1][2] = 0.0;
    EXPECT_THAT(messageOf<krige::InputError>([&] { krige::inModelForm(samples, settings); }),
                testing::StartsWith("s.csv, line 5, column 'b': 0 has no logarithm"));
}

TEST(DataFormTest, LimitsReadBackToTheSameBits)
{
    for (const fenn::analysis::Interval limits :
         {fenn::analysis::Interval{0.1 + 0.2, infinity}, fenn::analysis::Interval{-infinity, -1e-300},
          fenn::analysis::Interval{-2.0, 3.0}, fenn::analysis::Interval{1.0, 1.0}})
    {
        const fenn::analysis::Interval read = krige::parseClamp("clamp", '"' + krige::clampText(limits) + '"');
        EXPECT_EQ(read.lower, limits.lower);
        EXPECT_EQ(read.upper, limits.upper);
    }
    EXPECT_EQ(krige::clampText({}), "");
}

TEST(DataFormTest, WordsMayStandInQuotes)
{
    EXPECT_TRUE(krige::parseTransform("transform", "\"log\""));
    EXPECT_FALSE(krige::parseTransform("transform", "none"));
    EXPECT_EQ(messageOf<krige::UsageError>([] { krige::parseTransform("transform", "ln"); }),
              "transform: must be log or none, not 'ln'");
}
