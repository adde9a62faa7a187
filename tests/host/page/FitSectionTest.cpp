#include "host/page/FitSection.h"

#include <gmock/gmock.h>

#include "host/model/SettingKeys.h"

using krige::fitSection;
using krige::SampleModel;
using krige::SampleTable;
using krige::Settings;
using testing::HasSubstr;
using testing::Not;

namespace
{

/// The section of a model of six samples, two of them at one place.
std::string sectionOf(const std::vector<std::pair<std::string, std::string>>& settingsOfKeys)
{
    const SampleTable samples{
        "s.csv", {"x", "y"}, {"z"}, {{0, 1, 0, 1, 2, 2}, {0, 0, 1, 1, 3, 3}}, {{1, 2, 3, 4, 5, 6}}, {2, 3, 4, 5, 6, 7}};
    Settings settings;
    for (const auto& [key, value] : settingsOfKeys)
        krige::applySetting(settings, key, value);
    const SampleModel model(samples, settings);
    return fitSection({samples, settings, model, model.calcSills(settings.sills), "They come from <here>.", "3 m",
                       "an engine", "krige report 's.csv'", "krige predict s.csv"});
}

} // namespace

TEST(FitSectionTest, DefaultsAreSaidInWords)
{
    const std::string html = sectionOf({{"duplicates", "merge"}});

    EXPECT_THAT(html, HasSubstr("They come from &lt;here&gt;."));
    EXPECT_THAT(html, HasSubstr("<td>3 m</td>"));
    EXPECT_THAT(html, HasSubstr("0: estimates pass through every sample"));
    EXPECT_THAT(html, HasSubstr("order 0: a constant mean, no trend"));
    EXPECT_THAT(html, HasSubstr("every estimate uses all 5 points"));
    EXPECT_THAT(html, HasSubstr("2 samples averaged into 1 point"));
    EXPECT_THAT(html, HasSubstr("by restricted likelihood over 5 points"));
    EXPECT_THAT(html, HasSubstr("automatic: the samples&#39; range"));
    EXPECT_THAT(html, Not(HasSubstr("logarithms")));
}

TEST(FitSectionTest, OtherSettingsLikewise)
{
    const std::string html = sectionOf({{"nugget", "0.2"},
                                        {"drift", "1"},
                                        {"nearest", "5"},
                                        {"anisotropy", "2.5,30"},
                                        {"transform", "log"},
                                        {"clamp", "0:9"},
                                        {"sill", "12"}});

    EXPECT_THAT(html, HasSubstr("0.2: so much of the variance is left at distance 0"));
    EXPECT_THAT(html, HasSubstr("a tilted plane"));
    EXPECT_THAT(html, HasSubstr("the 5 nearest of 6 points"));
    EXPECT_THAT(html, HasSubstr("2.5 times as far along 30 degrees"));
    EXPECT_THAT(html, HasSubstr("one of natural logarithms"));
    EXPECT_THAT(html, HasSubstr("brought into 0:9"));
    EXPECT_THAT(html, HasSubstr("12 as given"));
    EXPECT_THAT(html, HasSubstr("none are merged"));
}

TEST(FitSectionTest, CommandLinesAndTheSettingsFileStandAsTheyAre)
{
    const std::string html = sectionOf({{"scale", "1,2"}, {"duplicates", "keep"}});

    EXPECT_THAT(html, HasSubstr("<pre>krige report &#39;s.csv&#39;</pre>"));
    EXPECT_THAT(html, HasSubstr("<pre>krige predict s.csv</pre>"));
    EXPECT_THAT(html, HasSubstr("scale = [1, 2]\n"));
    EXPECT_THAT(html, HasSubstr("<td>x by 1, y by 2</td>"));
    EXPECT_THAT(html, HasSubstr("kept as they are"));
}
