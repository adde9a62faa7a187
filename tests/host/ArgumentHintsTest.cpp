#include "host/CommandLine.h"

#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "tests/host/TemporaryFolder.h"

using krige::test::TemporaryFolder;
using testing::StartsWith;

namespace
{

/// What krige says of the arguments, which are a usage error.
std::string messageOf(const std::vector<std::string>& arguments)
{
    std::vector<const char*> argv{"krige"};
    for (const std::string& argument : arguments)
        argv.push_back(argument.c_str());
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(krige::runCommandLine(static_cast<int>(argv.size()), argv.data(), out, err), 2);
    EXPECT_EQ(out.str(), "");
    return err.str();
}

const std::vector<std::string> sound{"predict", "s.csv",  "--inputs", "x,y", "--outputs",
                                     "z",       "--grid", "2x2",      "-o",  "o.csv"};

/// A sound command line with these words behind it.
std::string messageWith(const std::vector<std::string>& words)
{
    std::vector<std::string> arguments = sound;
    arguments.insert(arguments.end(), words.begin(), words.end());
    return messageOf(arguments);
}

} // namespace

TEST(ArgumentHintsTest, AMisspeltOptionIsSuggested)
{
    EXPECT_EQ(messageWith({"--nuget", "0.1"}),
              "krige: --nuget: there is no such option; did you mean --nugget?\nSee 'krige predict --help'.\n");
    EXPECT_THAT(messageWith({"--nuget=0.1"}), StartsWith("krige: --nuget: there is no such option; did you mean"));
    EXPECT_THAT(messageWith({"--Nugget", "0.1"}), StartsWith("krige: --Nugget: there is no such option; did you mean"));
    EXPECT_THAT(messageWith({"--skip_missing"}), StartsWith("krige: --skip_missing: there is no such option; did you "
                                                            "mean --skip-missing?"));
    EXPECT_THAT(messageWith({"-nugget", "0.1"}),
                StartsWith("krige: -nugget: there is no such option; did you mean --nugget?"));
}

TEST(ArgumentHintsTest, AMisspeltOptionComesBeforeTheOneThatItLacks)
{
    EXPECT_THAT(messageOf({"predict", "s.csv", "--input", "x,y", "--outputs", "z", "--grid", "2x2", "-o", "o.csv"}),
                StartsWith("krige: --input: there is no such option; did you mean --inputs?"));
}

TEST(ArgumentHintsTest, AnOptionOfAnotherSubcommandIsNamed)
{
    EXPECT_THAT(messageWith({"--leave-one-out"}),
                StartsWith("krige: --leave-one-out: is an option of krige validate, not of krige predict"));
}

TEST(ArgumentHintsTest, AnOptionLikeNoOtherIsRefused)
{
    EXPECT_THAT(messageWith({"--colour", "red"}),
                StartsWith("krige: --colour: there is no such option of krige predict\n"));
}

TEST(ArgumentHintsTest, AListWithBlanksIsJoined)
{
    EXPECT_THAT(messageOf({"predict", "s.csv", "--inputs", "x", "y", "--outputs", "z", "-o", "o.csv"}),
                StartsWith("krige: a list is written with commas and without blanks; did you mean --inputs x,y?"));
    const TemporaryFolder folder;
    const std::string samples = folder.write("s.csv", "x,y,z\n");
    EXPECT_THAT(messageOf({"predict", "--outputs", "a", "b", "c", samples, "--inputs", "x", "-o", "o.csv"}),
                StartsWith("krige: a list is written with commas and without blanks; did you mean --outputs a,b,c?"));
}

TEST(ArgumentHintsTest, AListWithACommaAndABlankIsExplained)
{
    EXPECT_THAT(
        messageOf({"predict", "s.csv", "--inputs", "x,", "y", "--outputs", "z", "-o", "o.csv"}),
        StartsWith("krige: --inputs: 'x,' holds an empty name; names are joined by commas without blanks, as in "
                   "x,y"));
}

TEST(ArgumentHintsTest, OutputForOutputsIsToldApart)
{
    EXPECT_THAT(
        messageOf({"predict", "s.csv", "--inputs", "x,y", "--output", "z", "--grid", "2x2"}),
        StartsWith("krige: --outputs is required, and --output names a file to write; did you mean --outputs z?"));
    EXPECT_THAT(
        messageOf({"predict", "s.csv", "--inputs", "x,y", "--output", "z", "-o", "o.csv", "--grid", "2x2"}),
        StartsWith("krige: --outputs is required, and --output names a file to write; did you mean --outputs z?"));
}

TEST(ArgumentHintsTest, ASecondFileIsNotExpected)
{
    const TemporaryFolder folder;
    const std::string other = folder.write("t.csv", "");
    EXPECT_THAT(messageWith({other}), StartsWith("krige: '" + other.substr(0, 3)));
    EXPECT_THAT(messageOf({"info", "a.csv", "b.csv"}),
                StartsWith("krige: 'b.csv' is not expected; SAMPLES is 'a.csv', one file only"));
}

TEST(ArgumentHintsTest, AMisspeltSubcommandIsSuggested)
{
    EXPECT_THAT(messageOf({"predcit", "s.csv"}), testing::HasSubstr("; did you mean 'predict'?"));
    EXPECT_THAT(messageOf({"prophesy"}), StartsWith("krige: 'prophesy' is none of the subcommands predict, validate"));
}

TEST(ArgumentHintsTest, AFileInPlaceOfASubcommandGetsAFirstStep)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("s.csv", "x,y,z\n");

    EXPECT_THAT(messageOf({path}), testing::HasSubstr("; to look at a file: krige info " + path));
}

TEST(ArgumentHintsTest, AnOptionBeforeTheSubcommandIsToldItsPlace)
{
    EXPECT_THAT(
        messageOf({"--inputs", "x,y", "predict", "s.csv"}),
        StartsWith("krige: --inputs stands before the subcommand; write krige SUBCOMMAND first, one of predict, "));
}

TEST(ArgumentHintsTest, HelpIsForOneSubcommand)
{
    EXPECT_THAT(messageOf({"help", "predict", "tune"}), StartsWith("krige: help: name one subcommand"));
    EXPECT_THAT(messageOf({"help", "tnue"}), testing::HasSubstr("did you mean 'tune'?"));
}
