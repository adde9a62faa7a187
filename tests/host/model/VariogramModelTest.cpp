#include "host/model/VariogramModel.h"

#include <cmath>

#include <gmock/gmock.h>

#include "estimation/makeModelParts.h"
#include "host/text/HostErrors.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/host/TemporaryFolder.h"

using fenn::analysis::SillMethod;
using fenn::analysis::SphericalFit;
using fenn::estimation::makeModelParts;
using fenn::estimation::SampleSet;
using krige::InputError;
using krige::OutputSill;
using krige::Settings;
using krige::SillChoice;
using krige::sillOfSettings;
using krige::test::messageOf;

namespace
{

/// A wave on a line of so many samples.
SampleSet waveOf(std::size_t numSamples)
{
    std::vector<std::vector<double>> columns(2);
    for (std::size_t i = 0; i < numSamples; ++i)
    {
        columns[0].push_back(static_cast<double>(i));
        columns[1].push_back(std::sin(0.7 * static_cast<double>(i)));
    }
    return {{columns[0]}, {columns[1]}};
}

OutputSill sillOf(const SampleSet& samples, const Settings& settings)
{
    return sillOfSettings(samples, *makeModelParts(samples, settings), settings);
}

} // namespace

TEST(VariogramModelTest, TheSillIsThatOfTheSettingsModel)
{
    const SampleSet samples = waveOf(60);

    const OutputSill sill = sillOf(samples, Settings());

    EXPECT_EQ(sill.method, SillMethod::RestrictedLikelihood);
    EXPECT_EQ(sill.value, fenn::analysis::estimateSills(samples, Settings())[0].value);
    EXPECT_EQ(sill.sampleVariance, samples.calcOutputVariance(0));
}

TEST(VariogramModelTest, AChosenSillIsTaken)
{
    Settings settings;
    settings.sills = {{SillChoice::Rule::Given, 12.5}};
    EXPECT_EQ(sillOf(waveOf(60), settings).value, 12.5);

    settings.sills = {{SillChoice::Rule::Sample, 0.0}};
    EXPECT_EQ(sillOf(waveOf(60), settings).value, waveOf(60).calcOutputVariance(0));
}

TEST(VariogramModelTest, ManyPointsAreEstimatedFromTheNearest)
{
    EXPECT_EQ(sillOf(waveOf(2000), Settings()).method, SillMethod::RestrictedLikelihood);
    EXPECT_EQ(sillOf(waveOf(2001), Settings()).method, SillMethod::LeaveOneOut);
}

TEST(VariogramModelTest, SettingsThatMakeNoModelLeaveTheSampleVariance)
{
    Settings settings;
    settings.driftOrder = 4; // of three points

    const OutputSill sill = sillOf(waveOf(3), settings);

    EXPECT_EQ(sill.method, SillMethod::SampleVariance);
    EXPECT_EQ(sill.value, waveOf(3).calcOutputVariance(0));
}

TEST(VariogramModelTest, AFitBecomesTheSettingsOfItsModel)
{
    const SampleSet samples({{0, 4}}, {{1, 2}}); // normalised to a width, and a diagonal, of 2
    Settings settings;
    settings.rangeInInputUnits = 3.0;
    settings.driftOrder = 2;
    SphericalFit fit;
    fit.sill = 9.0;
    fit.nuggetFraction = 0.25;
    fit.range = 0.5;

    const Settings fitted = withFit(settings, *makeModelParts(samples, settings), fit);

    EXPECT_DOUBLE_EQ(fitted.rangeFraction, 0.25);
    EXPECT_FALSE(fitted.rangeInInputUnits);
    EXPECT_EQ(fitted.nugget, 0.25);
    EXPECT_EQ(fitted.driftOrder, 2);
    EXPECT_EQ(chooseSill(fitted.sills, 0).value, 9.0);
}

TEST(VariogramModelTest, TooFewBinsAreAnErrorOfTheFile)
{
    const SampleSet samples = waveOf(3);

    EXPECT_THAT(messageOf<InputError>([&] { krige::fitToBins(*makeModelParts(samples, {}), {}, "s.csv"); }),
                testing::StartsWith("s.csv: a semivariogram can be fitted to no fewer than 3 lags"));
}
