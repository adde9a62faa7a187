#include "host/page/CommandText.h"

#include <gmock/gmock.h>

#include <CLI/CLI.hpp>

#include "host/model/ModelOptions.h"
#include "host/model/SettingKeys.h"

using krige::optionsOfSettings;
using krige::Settings;
using krige::shellText;
using testing::ElementsAre;

TEST(CommandTextTest, TheWordsOfSettingsGiveThemAgain)
{
    Settings settings;
    settings.driftOrder = 2;
    settings.rangeInInputUnits = 900.0;
    settings.scaleFactors = {1.0, 1.0};
    settings.nugget = 0.1;
    settings.numNearestPoints = 12;
    settings.duplicateTolerance = 0.001;
    settings.sills = {{}, {krige::SillChoice::Rule::Given, 12.5}};
    settings.units.areLogarithms = true;
    settings.units.limits.lower = -1.0;
    const std::vector<std::string> words = optionsOfSettings(settings);
    Settings again;
    for (std::size_t i = 0; i + 1 < words.size(); i += 2)
        krige::applySetting(again, words[i].substr(2), words[i + 1]);

    EXPECT_TRUE(again == settings);
}

TEST(CommandTextTest, AnisotropyTakesThePlaceOfScales)
{
    Settings settings;
    krige::applySetting(settings, "anisotropy", "2.5,30");
    const std::vector<std::string> words = optionsOfSettings(settings);

    EXPECT_THAT(words, testing::Contains("2.5,30"));
    EXPECT_THAT(words, testing::Not(testing::Contains("--scale")));
}

TEST(CommandTextTest, SpecialCharactersAreQuotedForTheShell)
{
    EXPECT_EQ(shellText({"krige", "a b", "it's", "$(x)", "", "x=0:1:5,y"}),
              "krige 'a b' 'it'\\''s' '$(x)' '' x=0:1:5,y");
}

TEST(CommandTextTest, SettingsAndWhatIsLeftOutAreNotTypedWords)
{
    CLI::App app;
    krige::ModelOptions options;
    std::string output;
    bool isExact = false;
    krige::addModelOptions(app, options);
    app.add_option("-o,--output", output);
    app.add_flag("--exact", isExact);
    app.parse("--inputs x,y --nugget 0.1 --units 'my m' -o page.html s.csv --exact --outputs z");

    EXPECT_THAT(krige::typedWords(app, {"--output"}),
                ElementsAre("s.csv", "--inputs", "x,y", "--outputs", "z", "--units", "my m", "--exact"));
}
