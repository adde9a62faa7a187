#include "host/model/SampleSurvey.h"

#include <cmath>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::ColumnGuess;
using krige::FileSurvey;
using krige::InputError;
using krige::SampleTable;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class SampleSurveyTest : public testing::Test
{
protected:
    FileSurvey survey(const std::string& text)
    {
        return krige::surveyFile(folder.write("s.csv", text), {});
    }

    ColumnGuess guess(const std::string& text)
    {
        return krige::guessColumns(survey(text));
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(SampleSurveyTest, CellsAreCountedAsNumbersMissingAndOthers)
{
    const FileSurvey file = survey("x\n2\n\" \"\nnan\nabout 3\n1e999\n-1\n");

    ASSERT_EQ(file.columns.size(), 1u);
    EXPECT_EQ(file.numRows, 6u);
    EXPECT_EQ(file.columns[0].numNumbers, 2u);
    EXPECT_EQ(file.columns[0].numMissing, 2u);
    EXPECT_EQ(file.columns[0].numOthers, 2u);
    EXPECT_EQ(file.columns[0].min, -1.0);
    EXPECT_EQ(file.columns[0].max, 2.0);
}

TEST_F(SampleSurveyTest, AColumnWithoutNumbersHasNoExtremes)
{
    const FileSurvey file = survey("name\na\n");

    EXPECT_TRUE(std::isnan(file.columns[0].min));
    EXPECT_TRUE(std::isnan(file.columns[0].max));
    EXPECT_FALSE(file.columns[0].isNumeric());
}

TEST_F(SampleSurveyTest, UnevenRowsAreCountedAndWhatTheyLackIsMissing)
{
    const FileSurvey file = survey("x,y\n1,2\n3\n4,5,6\n");

    EXPECT_EQ(file.numUnevenRows, 2u);
    EXPECT_EQ(file.firstUnevenLine, 3u);
    EXPECT_EQ(file.columns[1].numMissing, 1u);
}

TEST_F(SampleSurveyTest, AnEmptyFileIsAnError)
{
    EXPECT_EQ(messageOf<InputError>([&] { survey(""); }),
              folder.pathOf("s.csv") +
                  ", line 1: the file is empty; it needs a header row with the names of its columns");
}

TEST_F(SampleSurveyTest, NamesOfCoordinatesAreInputsAndTheOthersOutputs)
{
    const ColumnGuess columns = guess("mag,Lat,long,stations\n4,1,2,9\n");

    EXPECT_THAT(columns.inputNames, ElementsAre("Lat", "long"));
    EXPECT_THAT(columns.outputNames, ElementsAre("mag", "stations"));
}

TEST_F(SampleSurveyTest, WithoutSuchNamesTheLastColumnIsTheOutput)
{
    const ColumnGuess columns = guess("a,b,c\n1,2,3\n");

    EXPECT_THAT(columns.inputNames, ElementsAre("a", "b"));
    EXPECT_THAT(columns.outputNames, ElementsAre("c"));
}

TEST_F(SampleSurveyTest, WhereAllAreCoordinatesTheLastOneIsTheOutput)
{
    const ColumnGuess columns = guess("x,y,z\n1,2,3\n");

    EXPECT_THAT(columns.inputNames, ElementsAre("x", "y"));
    EXPECT_THAT(columns.outputNames, ElementsAre("z"));
}

TEST_F(SampleSurveyTest, NumbersOfRowsTextsAndRepeatedNamesAreLeftOut)
{
    const ColumnGuess columns = guess("id,x,site,a,a,v\n1,2,here,3,4,5\n");

    EXPECT_THAT(columns.inputNames, ElementsAre("x"));
    EXPECT_THAT(columns.outputNames, ElementsAre("v"));
}

TEST_F(SampleSurveyTest, OneNumericColumnIsNoGuess)
{
    const ColumnGuess columns = guess("site,x\nhere,1\n");

    EXPECT_THAT(columns.inputNames, IsEmpty());
    EXPECT_THAT(columns.outputNames, IsEmpty());
}

TEST_F(SampleSurveyTest, SamplesAreTheRowsWithANumberInEachColumn)
{
    const SampleTable samples = krige::samplesOf(survey("x,z,note\n1,2,\n3,,\n5,6,b\n"), {"x"}, {"z"});

    EXPECT_THAT(samples.inputs[0], ElementsAre(1, 5));
    EXPECT_THAT(samples.outputs[0], ElementsAre(2, 6));
    EXPECT_EQ(samples.numSkipped, 1u);
}

TEST_F(SampleSurveyTest, AColumnThatIsMissingOrRepeatedIsAnError)
{
    const FileSurvey file = survey("x,x,z\n1,2,3\n");

    EXPECT_EQ(messageOf<InputError>([&] { krige::samplesOf(file, {"y"}, {"z"}); }),
              file.path + ": there is no column 'y'");
    EXPECT_EQ(messageOf<InputError>([&] { krige::samplesOf(file, {"x"}, {"z"}); }),
              file.path + ": the header row has the column 'x' twice; rename one of them");
}
