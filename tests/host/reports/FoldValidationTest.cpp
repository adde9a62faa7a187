#include "host/reports/FoldValidation.h"

#include <sstream>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::FoldValidation;
using krige::InputError;
using krige::SampleTable;
using krige::UsageError;
using krige::test::messageOf;

namespace
{

SampleTable samplesOnALine()
{
    return {"s.csv", {"x"}, {"z"}, {{0, 1, 2, 3}}, {{0, 1, 2, 3}}, {2, 3, 4, 5}};
}

FoldValidation validated(const SampleTable& samples, std::size_t numFolds, const krige::Settings& settings = {})
{
    std::ostringstream err;
    const krige::Console console(err, {});
    return krige::validateInFolds(samples, settings, {}, numFolds, 1, console);
}

} // namespace

TEST(FoldValidationTest, EverySampleIsEstimatedOnceInTheOrderOfTheFile)
{
    const FoldValidation validation = validated(samplesOnALine(), 4);

    EXPECT_EQ(validation.method, "4 folds of 4 samples, seed 1");
    EXPECT_EQ(validation.result.lines, (std::vector<std::string>{"2", "3", "4", "5"}));
    EXPECT_EQ(validation.result.truths[0], (std::vector<double>{0, 1, 2, 3}));
    // Between its neighbours a sample of a line is estimated on the line.
    EXPECT_NEAR(validation.result.estimates[0][1], 1.0, 0.2);
    EXPECT_EQ(validation.sillsOfFolds.size(), 4u);
}

TEST(FoldValidationTest, ThereAreAtMostAsManyFoldsAsPlaces)
{
    SampleTable samples = samplesOnALine();
    samples.inputs[0][3] = samples.inputs[0][2];
    krige::Settings settings;
    settings.nugget = 0.1;

    EXPECT_EQ(validated(samples, 10, settings).method, "3 folds of 4 samples, seed 1, those of one place in one fold");
}

TEST(FoldValidationTest, SamplesAtOnePlaceCannotBeValidated)
{
    SampleTable samples = samplesOnALine();
    samples.inputs[0] = {1, 1, 1, 1};

    EXPECT_EQ(messageOf<InputError>([&] { validated(samples, 2); }),
              "s.csv: cross-validation needs samples at two places at least");
}

TEST(FoldValidationTest, MoreFoldsThanSamplesAreRefused)
{
    EXPECT_NO_THROW(krige::checkFolds(4, samplesOnALine(), "lower it"));
    EXPECT_EQ(messageOf<UsageError>([] { krige::checkFolds(5, samplesOnALine(), "lower it"); }),
              "--folds: 5 folds need as many samples, but s.csv has 4; lower it");
}
