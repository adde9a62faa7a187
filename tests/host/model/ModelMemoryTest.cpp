#include "host/model/ModelMemory.h"

#include <cmath>

#include <gmock/gmock.h>

#include "estimation/SystemSize.h"
#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using fenn::estimation::calcCovarianceBytes;
using fenn::estimation::calcSystemBytes;
using fenn::estimation::ModelSettings;
using krige::checkModelMemory;
using krige::InputError;
using krige::SampleTable;
using krige::test::messageOf;
using testing::AllOf;
using testing::HasSubstr;

namespace
{

/// n samples on a line, the last two at one place.
SampleTable samplesOnALine(std::size_t n)
{
    SampleTable samples{"s.csv", {"x"}, {"z"}, {std::vector<double>(n)}, {std::vector<double>(n)}};
    for (std::size_t i = 0; i + 1 < n; ++i)
        samples.inputs[0][i] = static_cast<double>(i);
    samples.inputs[0][n - 1] = samples.inputs[0][n - 2];
    return samples;
}

} // namespace

TEST(ModelMemoryTest, AModelThatFitsIsTaken)
{
    const SampleTable samples = samplesOnALine(100);

    EXPECT_NO_THROW(checkModelMemory(samples, {}, calcSystemBytes(100, 1, 0)));
}

TEST(ModelMemoryTest, AModelThatDoesNotIsRefusedWithFiguresAndTheWayOut)
{
    const SampleTable samples = samplesOnALine(5000);

    EXPECT_THAT(messageOf<InputError>([&] { checkModelMemory(samples, {}, 1e6); }),
                AllOf(HasSubstr("s.csv: a model over all 5000 points takes 2"), HasSubstr("there are 1 MB left"),
                      HasSubstr("add --nearest 32")));
}

TEST(ModelMemoryTest, MergedPointsAreNotCounted)
{
    const SampleTable samples = samplesOnALine(100);
    ModelSettings settings;
    settings.duplicateTolerance = 0.0;

    EXPECT_NO_THROW(checkModelMemory(samples, settings, calcSystemBytes(99, 1, 0)));
    EXPECT_THROW(checkModelMemory(samples, {}, calcSystemBytes(99, 1, 0)), InputError);
}

TEST(ModelMemoryTest, TheCovarianceFormOfAGlobalModelTakesHalf)
{
    const SampleTable samples = samplesOnALine(5000);
    const double bytes = calcCovarianceBytes(5000, 1, 0);

    EXPECT_LT(bytes, 0.52 * calcSystemBytes(5000, 1, 0));
    EXPECT_NO_THROW(checkModelMemory(samples, {}, bytes, false));
    EXPECT_THROW(checkModelMemory(samples, {}, bytes, true), InputError);
    EXPECT_THROW(checkModelMemory(samples, {}, 0.99 * bytes, false), InputError);
}

TEST(ModelMemoryTest, FoldsThatAreLeftOutAtOnceAreCountedPerThread)
{
    const SampleTable samples = samplesOnALine(5000);
    const double oneFold = 8.0 * 5000 * 500;
    const krige::FoldsAtOnce onTwoThreads{10, 2};
    const double bytes = calcSystemBytes(5000, 1, 0);

    EXPECT_NO_THROW(checkModelMemory(samples, {}, bytes + 3.0 * oneFold, true, onTwoThreads));
    EXPECT_THROW(checkModelMemory(samples, {}, bytes + oneFold, true, onTwoThreads), InputError);
    EXPECT_NO_THROW(checkModelMemory(samples, {}, bytes + oneFold, true));
}

TEST(ModelMemoryTest, ALocalModelTakesOneSmallSystem)
{
    const SampleTable samples = samplesOnALine(5000);
    ModelSettings settings;
    settings.numNearestPoints = 50;

    EXPECT_NO_THROW(checkModelMemory(samples, settings, calcSystemBytes(50, 1, 0)));
    EXPECT_THAT(messageOf<InputError>([&] { checkModelMemory(samples, settings, 1000.0); }),
                HasSubstr("a system of 50 nearest samples takes"));
}
