#include "host/text/HelpFormatter.h"

#include <memory>
#include <string>

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;

namespace
{

class HelpFormatterTest : public testing::Test
{
protected:
    HelpFormatterTest()
    {
        app.formatter(std::make_shared<krige::HelpFormatter>());
    }

    CLI::App app{"Does something.", "program"};
    std::string text;
};

} // namespace

TEST_F(HelpFormatterTest, AnOptionsMeaningStandsBelowItIndented)
{
    app.add_option("-o,--output", text, "File to write.")->type_name("FILE");

    EXPECT_THAT(app.help(), HasSubstr("\n  -o,--output FILE\n        File to write.\n"));
}

TEST_F(HelpFormatterTest, AFlagHasNoValue)
{
    app.add_flag("--quiet", "Say nothing.");

    EXPECT_THAT(app.help(), HasSubstr("\n  --quiet\n        Say nothing.\n"));
}

TEST_F(HelpFormatterTest, ALineHolds80ColumnsAndNoMore)
{
    const std::string filler(70, 'a');
    app.add_option("--fits", text, filler + " b")->type_name("FILE");
    app.add_option("--not", text, filler + " bc")->type_name("FILE");

    EXPECT_THAT(app.help(), HasSubstr("\n        " + filler + " b\n"));
    EXPECT_THAT(app.help(), HasSubstr("\n        " + filler + "\n        bc\n"));
}

TEST_F(HelpFormatterTest, OtherOptionsThatAreExcludedAreNotListed)
{
    CLI::Option* const first = app.add_flag("--first", "One.");
    app.add_flag("--second", "The other.")->excludes(first);

    EXPECT_THAT(app.help(), Not(HasSubstr("Excludes")));
}

TEST_F(HelpFormatterTest, ASubcommandsMeaningStandsBelowIt)
{
    app.add_subcommand("predict", "Estimate at targets");

    EXPECT_THAT(app.help(), HasSubstr("\n  predict\n        Estimate at targets\n"));
}

TEST_F(HelpFormatterTest, ExamplesInTheFooterAreNotWrapped)
{
    const std::string example = "  program " + std::string(100, 'x');
    app.footer("Examples:\n" + example);

    EXPECT_THAT(app.help(), HasSubstr("\nExamples:\n" + example + "\n"));
}

TEST_F(HelpFormatterTest, ParagraphsOfTheFooterAreWrappedAndKeptApart)
{
    app.footer(std::string(78, 'a') + " bcd\n\nLast.");

    EXPECT_THAT(app.help(), HasSubstr("\n" + std::string(78, 'a') + "\nbcd\n\nLast.\n"));
}
