#include "host/model/ModelOptions.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/host/Words.h"

using krige::ModelOptions;
using krige::UsageError;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::ElementsAre;

namespace
{

/// The options of a command line that goes on after `samples.csv --inputs x,y --outputs z`.
ModelOptions parsed(std::vector<std::string> more)
{
    std::vector<std::string> words{"samples.csv", "--inputs", "x,y", "--outputs", "z"};
    words.insert(words.end(), more.begin(), more.end());
    const auto app = krige::test::makeApp();
    ModelOptions options;
    krige::addModelOptions(*app, options);
    krige::test::parse(*app, std::move(words));
    return options;
}

} // namespace

TEST(ModelOptionsTest, WithoutOptionsTheSettingsAreTheModelsDefaults)
{
    const ModelOptions options = parsed({});

    EXPECT_EQ(options.samplesPath, "samples.csv");
    EXPECT_THAT(options.inputNames, ElementsAre("x", "y"));
    EXPECT_THAT(options.outputNames, ElementsAre("z"));
    EXPECT_TRUE(options.settings == krige::Settings());
}

TEST(ModelOptionsTest, EverySettingHasAnOption)
{
    const ModelOptions options = parsed({"--duplicate-tolerance", "0", "--scale", "1,2", "--drift", "1", "--range",
                                         "0.5", "--nugget", "0.25", "--nearest", "8"});

    EXPECT_EQ(options.settings.duplicateTolerance, 0.0);
    EXPECT_THAT(options.settings.scaleFactors, ElementsAre(1.0, 2.0));
    EXPECT_EQ(options.settings.driftOrder, 1);
    EXPECT_EQ(options.settings.rangeFraction, 0.5);
    EXPECT_EQ(options.settings.nugget, 0.25);
    EXPECT_EQ(options.settings.numNearestPoints, 8);
}

TEST(ModelOptionsTest, AnOptionWinsOverTheSettingsFileWhereverItStands)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("best.toml", "drift = 1\nnugget = 0.5\n");

    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"--config", path, "--drift", "2"}, {"--drift", "2", "--config", path}})
    {
        const ModelOptions options = parsed(words);
        EXPECT_EQ(options.settings.driftOrder, 2);
        EXPECT_EQ(options.settings.nugget, 0.5);
    }
}

TEST(ModelOptionsTest, ARangeInInputUnitsNeedsInputsOfOneScale)
{
    ModelOptions options = parsed({"--range", "900u"});

    EXPECT_EQ(messageOf<UsageError>([&] { krige::checkModelOptions(options); }),
              "--range 900u: a distance in the inputs' units needs inputs of one scale; add --scale 1,1 (by default "
              "each input is stretched to the same width)");
    options.settings.scaleFactors = {1.0, 1.0};
    EXPECT_NO_THROW(krige::checkModelOptions(options));
}

TEST(ModelOptionsTest, TheUnitsAreAnyNameWithoutControlCharacters)
{
    EXPECT_EQ(parsed({}).units, "");
    EXPECT_EQ(parsed({"--units", " km "}).units, "km");
    EXPECT_EQ(messageOf<UsageError>([] { parsed({"--units", "  "}); }), "--units: needs the name of a unit, not '  '");
    EXPECT_EQ(messageOf<UsageError>(
                  [] {
                      parsed({"--units", "m\033[31m"});
                  }),
              "--units: needs the name of a unit, not 'm?[31m'");
}

TEST(ModelOptionsTest, AMalformedSettingNamesItsOption)
{
    EXPECT_EQ(messageOf<UsageError>([] { parsed({"--nugget", "much"}); }), "--nugget: 'much' is not a number");
}

TEST(ModelOptionsTest, ThreadsAreChosenAndExactnessIsOffUnlessAskedFor)
{
    const auto app = krige::test::makeApp();
    fenn::estimation::EstimatorOptions estimator;
    krige::addEstimatorOptions(*app, estimator);
    krige::test::parse(*app, {});
    EXPECT_EQ(estimator.numThreads, 0);
    EXPECT_FALSE(estimator.isExact);

    krige::test::parse(*app, {"--threads", "3", "--exact"});
    EXPECT_EQ(estimator.numThreads, 3);
    EXPECT_TRUE(estimator.isExact);
}

TEST(ModelOptionsTest, NamesWithCommasStandInQuotes)
{
    EXPECT_THAT(krige::parseNames("--inputs", "x,\"a,b\""), ElementsAre("x", "a,b"));
}

TEST(ModelOptionsTest, EmptyNamesAreRefused)
{
    EXPECT_EQ(messageOf<UsageError>([] { krige::parseNames("--inputs", ""); }),
              "--inputs: needs the name of at least one column");
    EXPECT_EQ(messageOf<UsageError>([] { krige::parseNames("--inputs", "x,"); }),
              "--inputs: 'x,' holds an empty name; names are joined by commas without blanks, as in x,y");
}

TEST(ModelOptionsTest, AColumnThatIsNamedTwiceIsRefused)
{
    ModelOptions options = parsed({});
    options.outputNames = {"x"};

    EXPECT_EQ(messageOf<UsageError>([&] { krige::checkModelOptions(options); }),
              "--inputs and --outputs: the column 'x' is named twice");
}

TEST(ModelOptionsTest, ScaleFactorsAreOnePerInputOrNone)
{
    ModelOptions options = parsed({});
    EXPECT_NO_THROW(krige::checkModelOptions(options));
    options.settings.scaleFactors = {1.0};

    EXPECT_EQ(messageOf<UsageError>([&] { krige::checkModelOptions(options); }),
              "--scale: 1 factor for 2 inputs; give one each");
}
