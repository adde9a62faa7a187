#include "host/model/ModelFailure.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "host/model/SampleModel.h"
#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using fenn::estimation::ModelSettings;
using krige::InputError;
using krige::SampleModel;
using krige::SampleTable;
using krige::test::messageOf;
using testing::HasSubstr;

namespace
{

SampleTable samplesAt(const std::vector<double>& x, const std::vector<double>& y)
{
    SampleTable samples{"s.csv", {"x", "y"}, {"z"}, {x, y}, {std::vector<double>(x.size(), 1.0)}};
    for (std::size_t i = 0; i < x.size(); ++i)
        samples.lines.push_back(i + 2);
    return samples;
}

/// Of building a model, or of its estimate at (0.25, 0.75) when it can be built.
std::string errorOf(const SampleTable& samples, const ModelSettings& settings)
{
    return messageOf<InputError>(
        [&]
        {
            const SampleModel model(samples, settings);
            std::vector<std::vector<double>> results;
            model.estimate({{0.25}, {0.75}}, results);
        });
}

} // namespace

TEST(ModelFailureTest, TooFewSamplesSayHowManyAreNeeded)
{
    EXPECT_EQ(errorOf(samplesAt({0, 1}, {0, 1}), {}),
              "s.csv: 2 samples are too few for 2 inputs: at least 3 are needed; add samples or name fewer --inputs");
}

TEST(ModelFailureTest, TooFewSamplesAfterMergingSayHowManyAreLeft)
{
    ModelSettings settings;
    settings.duplicateTolerance = 0.0;

    EXPECT_THAT(errorOf(samplesAt({0, 1, 1}, {0, 1, 1}), settings),
                HasSubstr("2 points left of 3 samples after merging are too few for 2 inputs"));
}

TEST(ModelFailureTest, TooFewNearestPointsSayToRaiseThem)
{
    ModelSettings settings;
    settings.numNearestPoints = 2;

    EXPECT_EQ(errorOf(samplesAt({0, 1, 0, 1}, {0, 0, 1, 1}), settings),
              "s.csv: --nearest 2 is too few for 2 inputs: at least 3 are needed; raise --nearest");
}

TEST(ModelFailureTest, TooFewSamplesForTheDriftSayToLowerIt)
{
    ModelSettings settings;
    settings.driftOrder = 2;

    EXPECT_EQ(errorOf(samplesAt({0, 1, 0, 1}, {0, 0, 1, 1}), settings),
              "s.csv: 4 samples are too few for --drift 2 in 2 inputs: at least 6 are needed; lower --drift or add "
              "samples");
}

TEST(ModelFailureTest, ASystemThatTheDriftLeavesUndeterminedSaysSo)
{
    ModelSettings settings;
    settings.driftOrder = 1;

    EXPECT_THAT(errorOf(samplesAt({0, 1, 2, 4}, {0, 0, 0, 0}), settings), HasSubstr("leave it out of --inputs"));
    settings.scaleFactors = {1.0, 1.0};
    EXPECT_THAT(errorOf(samplesAt({0, 1, 2, 4}, {0, 0, 0, 0}), settings), HasSubstr("lower --drift"));
}

TEST(ModelFailureTest, AnInputWithOneValueIsNamed)
{
    EXPECT_EQ(errorOf(samplesAt({0, 1, 2, 4}, {3, 3, 3, 3}), {}),
              "s.csv: the input 'y' has one value in all samples (3); leave it out of --inputs, or give it a positive "
              "--scale");
}

TEST(ModelFailureTest, AZeroScaleFactorIsNamed)
{
    ModelSettings settings;
    settings.scaleFactors = {1.0, 0.0};

    EXPECT_THAT(errorOf(samplesAt({0, 1, 0, 1}, {0, 0, 1, 1}), settings), HasSubstr("that of 'y' is 0"));
}

TEST(ModelFailureTest, CoincidentSamplesSayHowToMergeThem)
{
    const SampleTable samples = samplesAt({0, 0, 0, 1}, {0, 0, 0, 1});

    for (const char* const message : {"Singular matrix", "Ill-conditioned matrix"})
        EXPECT_EQ(krige::explainModelFailure(message, samples, {}),
                  "s.csv: 3 of 4 samples share their place with another, for instance lines 2 and 3, distance 0; add "
                  "--duplicates merge to average them, --nugget 0.1 to take them as repeated measurements, or "
                  "--duplicates keep to go on all the same");
}

TEST(ModelFailureTest, EverySampleOfASharedPlaceIsCountedAsCoincident)
{
    EXPECT_EQ(krige::describeCoincidentSamples(samplesAt({0, 0, 1, 2}, {0, 0, 1, 2})), "2 of 4 samples coincide");
}

TEST(ModelFailureTest, SamplesApartGiveNoHint)
{
    EXPECT_EQ(krige::describeCoincidentSamples(samplesAt({0, 0, 1}, {0, 1, 1})), "");
}

TEST(ModelFailureTest, AnUnknownMessageIsPassedOnWithTheFile)
{
    EXPECT_EQ(krige::explainModelFailure("Something new", samplesAt({0, 1}, {0, 1}), {}), "s.csv: Something new");
}

TEST(ModelFailureTest, MissingMemoryNamesTheSizeAndTheWayOut)
{
    const SampleTable samples = samplesAt(std::vector<double>(50000, 0.0), std::vector<double>(50000, 0.0));

    EXPECT_THAT(krige::explainMissingMemory(samples, {}),
                AllOf(HasSubstr("over all 50000 samples takes 20."),
                      HasSubstr(" GB of memory, more than there is; add --nearest 32")));
}
