#include "host/commands/InfoCommand.h"

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/host/commands/CommandRun.h"

using krige::UsageError;
using krige::test::CommandRun;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

class InfoCommandTest : public testing::Test
{
protected:
    std::string printed(const std::string& text, std::vector<std::string> words = {})
    {
        words.insert(words.begin(), folder.write("s.csv", text));
        CommandRun<krige::InfoCommand> run(words);
        run.command.run(run.out, run.getConsole());
        return run.out.str();
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(InfoCommandTest, EveryColumnIsListedWithWhatItHolds)
{
    const std::string text = printed("x,y,z\n0,0,1\n1,0,2\n0,10,\n");

    EXPECT_THAT(text, StartsWith("file: " + folder.pathOf("s.csv") +
                                 ", 3 rows, 3 columns, delimiter comma\n"
                                 "  column  numbers  missing  other  least  greatest\n"
                                 "  'x'           3        0      0      0         1\n"
                                 "  'y'           3        0      0      0        10\n"
                                 "  'z'           2        1      0      1         2\n"));
}

TEST_F(InfoCommandTest, TheSuggestionIsACommandForTheGuessedColumns)
{
    EXPECT_THAT(printed("x,y,z\n0,0,1\n1,0,2\n0,1,3\n1,1,4\n"),
                HasSubstr("\nsuggestion: krige predict " + folder.pathOf("s.csv") +
                          " --inputs x,y --outputs z --grid 200x200 -o estimates.csv\n"));
}

TEST_F(InfoCommandTest, TheDefaultRangeIsSaidInTheInputsUnits)
{
    EXPECT_THAT(printed("x,y,z\n0,0,1\n30,0,2\n0,40,3\n30,40,4\n", {"--units", "km"}),
                HasSubstr("\nrange: 42.4264 km in 'x', 56.5685 km in 'y' (1 of the normalised diagonal) by default; "));
    EXPECT_THAT(printed("x,y,z\n0,0,1\n30,0,2\n"), testing::Not(HasSubstr("\nrange: "))); // y has one value
}

TEST_F(InfoCommandTest, CoincidentSamplesAreCountedAndTheSuggestionMergesThem)
{
    const std::string text = printed("x,z\n0,1\n0,2\n1,3\n2,4\n");

    EXPECT_THAT(text, HasSubstr("coincident: 2 of 4 samples coincide; --duplicates merge averages them and leaves 3 "
                                "points\n"));
    EXPECT_THAT(text, HasSubstr(" --duplicates merge --grid 1000 "));
}

TEST_F(InfoCommandTest, NamesThatAShellWouldReadAreQuotedInTheSuggestion)
{
    EXPECT_THAT(printed("x,it's (m)\n0,1\n1,3\n2,4\n"), HasSubstr(" --inputs x --outputs 'it'\\''s (m)' "));
}

TEST_F(InfoCommandTest, ColumnsMayBeNamed)
{
    EXPECT_THAT(printed("a,b,c\n0,1,5\n1,3,6\n2,4,7\n", {"--inputs", "c", "--outputs", "a,b"}),
                HasSubstr("\ninputs: c; outputs: a,b\n"));
}

TEST_F(InfoCommandTest, InputsAloneAreAUsageError)
{
    EXPECT_EQ(messageOf<UsageError>(
                  [&] {
                      printed("a,b\n0,1\n", {"--inputs", "a"});
                  }),
              "--inputs and --outputs go together; give both or neither");
}

TEST_F(InfoCommandTest, WithoutTwoColumnsOfNumbersNothingIsSuggested)
{
    EXPECT_THAT(printed("a;b\n1;x\n", {"--delimiter", "comma"}), HasSubstr("suggestion: none, for there are no two"));
}
