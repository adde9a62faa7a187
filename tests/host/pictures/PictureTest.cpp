#include "host/pictures/Picture.h"

#include <cmath>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::Panel;
using krige::Picture;
using krige::PictureSize;
using krige::test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;

namespace
{

Panel somePanel()
{
    Panel panel;
    panel.x = {{0, 1}, "x", ""};
    panel.y = {{0, 1}, "y", ""};
    panel.plots = "x";
    return panel;
}

std::string scriptOf(const Picture& picture)
{
    const TemporaryFolder folder;
    picture.save(folder.pathOf("p.gp"));
    return folder.read("p.gp");
}

std::string scriptOf(std::size_t numPanels, PictureSize size, const std::string& title = {})
{
    Picture picture(0, title, size);
    for (std::size_t i = 0; i < numPanels; ++i)
        picture.addPanel(somePanel());
    return scriptOf(picture);
}

} // namespace

TEST(PictureTest, ARowOfNothingIsAGapInALine)
{
    Picture picture;
    const double none = std::nan("");
    picture.addData({{1, none, 2, none}, {3, none, none, 4}});
    picture.addPanel(somePanel());

    EXPECT_THAT(scriptOf(picture), HasSubstr("<< END_OF_DATA\n1 3\n\n2 nan\nnan 4\nEND_OF_DATA\n"));
}

TEST(PictureTest, AMatrixHasARowPerLine)
{
    Picture picture;
    picture.addMatrix({1, 2, std::nan(""), 4}, 2);
    picture.addPanel(somePanel());

    EXPECT_THAT(scriptOf(picture), HasSubstr("<< END_OF_DATA\n1 2\nnan 4\nEND_OF_DATA\n"));
}

TEST(PictureTest, OnePanelIsNoMultiplot)
{
    EXPECT_THAT(scriptOf(1, {}), Not(HasSubstr("multiplot")));
    EXPECT_THAT(scriptOf(2, {}), HasSubstr("set multiplot\n"));
}

TEST(PictureTest, ThePictureIsAsLargeAsItsPanels)
{
    EXPECT_THAT(scriptOf(1, {}), HasSubstr(" size 760,600\n"));
    EXPECT_THAT(scriptOf(3, {}), HasSubstr(" size 1520,1200\n"));
    EXPECT_THAT(scriptOf(1, {}, "A title"), HasSubstr(" size 760,640\n"));
}

TEST(PictureTest, AGivenSizeIsKeptAndTextGrowsAlong)
{
    const std::string large = scriptOf(1, {1520, 1200});
    EXPECT_THAT(large, HasSubstr(" fontscale 2 linewidth 2 size 1520,1200\n"));
    EXPECT_THAT(scriptOf(4, {1520, 1200}), HasSubstr(" fontscale 1 linewidth 1 size 1520,1200\n"));
    EXPECT_THAT(scriptOf(1, {500, 400}), HasSubstr(" fontscale 1 linewidth 1 size 500,400\n"));
    EXPECT_THAT(scriptOf(1, {210, 600}), HasSubstr(" fontscale 0.5 linewidth 0.5 size 210,600\n"));
}

TEST(PictureTest, TheTitleStandsOverTheFirstPanel)
{
    EXPECT_THAT(scriptOf(2, {}, "it's"), HasSubstr("set label 3 'it''s' at screen 0.5"));
    EXPECT_THAT(scriptOf(2, {}), Not(HasSubstr("set label 3")));
}

TEST(PictureTest, ALongPathIsNotShortened)
{
    const TemporaryFolder folder;
    const std::string path = folder.pathOf(std::string(150, 'p') + ".gp");
    Picture picture;
    picture.addPanel(somePanel());
    picture.save(path);

    EXPECT_THAT(folder.read(std::string(150, 'p') + ".gp"), HasSubstr(std::string(150, 'p') + ".png'\n"));
}

TEST(ParsePictureSizeTest, TakesWidthAndHeight)
{
    const PictureSize size = krige::parsePictureSize("--plot-size", "1200x900");

    EXPECT_EQ(size.width, 1200);
    EXPECT_EQ(size.height, 900);
}

TEST(ParsePictureSizeTest, RefusesWhatIsNoSize)
{
    for (const char* text : {"", "1200", "x900", "1200x", "1200x900x3", "12.5x900", "1200,900", "100x900", "900x100",
                             "20000x900", "-500x900", "1200 x 900", "99999999999x900"})
        EXPECT_THROW(krige::parsePictureSize("--plot-size", text), krige::UsageError) << text;
}
