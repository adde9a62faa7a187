#include "host/pictures/PanelLayout.h"

#include <gmock/gmock.h>

using krige::Panel;
using krige::PanelLayout;
using krige::PointLabel;
using testing::HasSubstr;
using testing::Not;

namespace
{

Panel panelOf(const krige::AxisRange& x, const krige::AxisRange& y)
{
    Panel panel;
    panel.x = {x, "x", "m"};
    panel.y = {y, "y", ""};
    return panel;
}

std::string commandsOf(const Panel& panel)
{
    return PanelLayout(panel, 760, 600).commands({0, 0, 760, 600}, 760, 600);
}

} // namespace

TEST(PanelLayoutTest, AxesOfOneScaleTakeNoMoreRoomThanTheyNeed)
{
    Panel panel = panelOf({0, 10}, {0, 20});
    panel.hasOneScale = true;
    const PanelLayout layout(panel, 760, 600);

    EXPECT_LT(layout.getNeededWidth(), 400.0);
    EXPECT_NEAR(layout.getNeededHeight(), 600.0, 1e-9);
}

TEST(PanelLayoutTest, TextHasRoomInTheCell)
{
    Panel panel = panelOf({0, 1}, {1e6, 5e6});
    panel.colours = krige::ColourKey{krige::estimatePalette(), {100000, 900000}, false, false, "z", ""};
    const PanelLayout layout(panel, 760, 600);

    EXPECT_NEAR(layout.getNeededWidth(), 760.0, 1e-9);
    // Left: a label of seven digits and the axis' name; right: the colour box, six digits and its name.
    const std::string commands = layout.commands({0, 0, 760, 600}, 760, 600);
    const std::size_t left = commands.find("set lmargin at screen ");
    const std::size_t right = commands.find("set rmargin at screen ");
    EXPECT_GT(760 * std::stod(commands.substr(left + 22)), 70 + 17 + 9);
    EXPECT_LT(760 * std::stod(commands.substr(right + 22)), 760 - 18 - 60 - 17);
}

TEST(PanelLayoutTest, ASmallCellLeavesAPlotAllTheSame)
{
    const PanelLayout layout(panelOf({0, 1}, {0, 1}), 50, 50);

    EXPECT_GE(layout.getNeededWidth(), 40.0);
}

TEST(PanelLayoutTest, AnOffsetStandsBesideTheName)
{
    EXPECT_THAT(commandsOf(panelOf({2451545, 2451670}, {0, 1})), HasSubstr("'x - 2451000 (m)'"));
    EXPECT_THAT(commandsOf(panelOf({-2451670, -2451545}, {0, 1})), HasSubstr("'x + 2451000 (m)'"));
    EXPECT_THAT(commandsOf(panelOf({0, 1}, {0, 1})), HasSubstr("'x (m)'"));
}

TEST(PanelLayoutTest, TurnedLabelsAreSaidToGnuplot)
{
    Panel panel = panelOf({178600, 181400}, {0, 1});
    const std::string narrow = PanelLayout(panel, 230, 600).commands({0, 0, 230, 600}, 230, 600);

    EXPECT_THAT(narrow, HasSubstr("rotate by 90 right"));
    EXPECT_THAT(commandsOf(panel), Not(HasSubstr("rotate by 90 right")));
}

TEST(PanelLayoutTest, ValuesBeyondTheColoursHaveATriangle)
{
    Panel panel = panelOf({0, 1}, {0, 1});
    panel.colours = krige::ColourKey{krige::estimatePalette(), {0, 1}, true, false, "z", ""};
    EXPECT_THAT(commandsOf(panel), HasSubstr("set object 2 polygon"));
    EXPECT_THAT(commandsOf(panel), Not(HasSubstr("set object 1 polygon")));
    panel.colours->isPassedAbove = true;
    panel.colours->isPassedBelow = false;
    EXPECT_THAT(commandsOf(panel), HasSubstr("set object 1 polygon"));
    EXPECT_THAT(commandsOf(panel), Not(HasSubstr("set object 2 polygon")));
}

TEST(PanelLayoutTest, LabelsThatWouldCoverEarlierOnesAreLeftOut)
{
    Panel panel = panelOf({0, 1}, {0, 1});
    panel.labels = {{0.5, 0.5, "12"}, {0.501, 0.501, "34"}, {0.5, 0.8, "56"}, {5.0, 0.5, "78"}};
    const std::vector<PointLabel> chosen = PanelLayout(panel, 760, 600).chooseLabels();

    ASSERT_EQ(chosen.size(), 2u);
    EXPECT_EQ(chosen[0].text, "12");
    EXPECT_EQ(chosen[1].text, "56");
}
