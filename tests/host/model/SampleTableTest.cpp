#include "host/model/SampleTable.h"

#include <vector>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::InputError;
using krige::readSamples;
using krige::ReadSettings;
using krige::SampleTable;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::ElementsAre;

namespace
{

using Columns = std::vector<std::vector<double>>;

class SampleTableTest : public testing::Test
{
protected:
    SampleTable read(const std::string& text, bool skipMissing = false)
    {
        ReadSettings reading;
        reading.skipMissing = skipMissing;
        return readSamples(folder.write("s.csv", text), {"x", "y"}, {"z"}, reading);
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(SampleTableTest, ColumnsAreThoseNamedInTheOrderOfTheirNames)
{
    const SampleTable samples = read("z,y,id,x\n1,2,a,3\n4,5,b,6\n");

    EXPECT_EQ(samples.inputs, (Columns{{3, 6}, {2, 5}}));
    EXPECT_EQ(samples.outputs, (Columns{{1, 4}}));
    EXPECT_EQ(samples.getNumSamples(), 2);
    EXPECT_THAT(samples.lines, ElementsAre(2, 3));
}

TEST_F(SampleTableTest, RowsWithAMissingValueAreLeftOutAndCounted)
{
    const SampleTable samples = read("x,y,z\n1,2,3\n4,,6\n7,8,nan\n9,10,11\n", true);

    EXPECT_EQ(samples.inputs, (Columns{{1, 9}, {2, 10}}));
    EXPECT_EQ(samples.numSkipped, 2u);
    EXPECT_THAT(samples.lines, ElementsAre(2, 5));
}

TEST_F(SampleTableTest, AMissingValueIsAnErrorOtherwise)
{
    EXPECT_EQ(messageOf<InputError>([&] { read("x,y,z\n1,,3\n"); }),
              folder.pathOf("s.csv") +
                  ", line 2, column 'y': the value is missing; --skip-missing leaves such rows out");
}

TEST_F(SampleTableTest, AFileWithoutSamplesIsAnError)
{
    EXPECT_EQ(messageOf<InputError>([&] { read("x,y,z\n"); }),
              folder.pathOf("s.csv") + ": no samples: there is nothing below the header row");
}

TEST_F(SampleTableTest, AFileOfMissingValuesAloneIsAnError)
{
    EXPECT_EQ(messageOf<InputError>([&] { read("x,y,z\n1,,3\n", true); }),
              folder.pathOf("s.csv") +
                  ": no samples: 1 row skipped, each with a missing value in a column of --inputs or --outputs");
}

TEST_F(SampleTableTest, TheCommandLinesOptionsNameFileAndColumns)
{
    krige::ModelOptions options;
    options.samplesPath = folder.write("s.csv", "a;b\n1;2\n");
    options.inputNames = {"a"};
    options.outputNames = {"b"};
    const SampleTable samples = readSamples(options);

    EXPECT_EQ(samples.path, options.samplesPath);
    EXPECT_EQ(samples.inputs, (Columns{{1}}));
    EXPECT_EQ(samples.outputs, (Columns{{2}}));
}

TEST_F(SampleTableTest, ArraysPointIntoTheColumns)
{
    const Columns columns{{1, 2}, {3, 4}};

    EXPECT_THAT(krige::arraysOf(columns), ElementsAre(columns[0].data(), columns[1].data()));
}
