#include "host/model/AnalysisInput.h"

#include <new>
#include <stdexcept>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "tests/host/TemporaryFolder.h"

using krige::InputError;
using krige::SampleTable;
using krige::UsageError;
using krige::test::messageOf;
using testing::StartsWith;

namespace
{

SampleTable fewSamples()
{
    return {"s.csv", {"x"}, {"z"}, {{0, 1, 2}}, {{5, 6, 7}}};
}

} // namespace

TEST(AnalysisInputTest, TheSampleSetHoldsTheTablesColumns)
{
    const fenn::estimation::SampleSet samples = krige::toSampleSet(fewSamples());

    EXPECT_EQ(samples.getInput(0), (std::vector<double>{0, 1, 2}));
    EXPECT_EQ(samples.getOutput(0), (std::vector<double>{5, 6, 7}));
}

TEST(AnalysisInputTest, ALibrarysErrorIsExplainedAfterItsCircumstance)
{
    const std::string message = messageOf<InputError>(
        []
        {
            krige::runExplained(fewSamples(), {}, "without one of 2 folds: ",
                                [] { throw SurrogateModelInterface::Error("Something new"); });
        });

    EXPECT_EQ(message, "without one of 2 folds: s.csv: Something new");
}

TEST(AnalysisInputTest, MissingMemoryIsExplained)
{
    EXPECT_THAT(
        messageOf<InputError>([] { krige::runExplained(fewSamples(), {}, "", [] { throw std::bad_alloc(); }); }),
        StartsWith("s.csv: a model over all 3 samples takes "));
}

TEST(AnalysisInputTest, ArgumentsThatTheAnalysisRefusesAreAUsageError)
{
    EXPECT_EQ(
        messageOf<UsageError>(
            []
            { krige::runExplained(fewSamples(), {}, "", [] { throw std::invalid_argument("folds: at least 2"); }); }),
        "folds: at least 2");
}

TEST(AnalysisInputTest, ProgressNeverEndsTheWork)
{
    krige::ProgressLine line(nullptr, "folds", false);

    EXPECT_TRUE(krige::reportTo(line)(1, 10));
}
