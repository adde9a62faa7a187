#include "host/pictures/VariogramPicture.h"

#include <gmock/gmock.h>

#include "estimation/makeModelParts.h"
#include "tests/host/TemporaryFolder.h"

using fenn::analysis::LagBin;
using krige::VariogramCurve;
using krige::test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;

namespace
{

std::string scriptOf(const std::vector<fenn::LagGroup>& groups, const std::vector<LagBin>& bins)
{
    const TemporaryFolder folder;
    krige::drawVariogram(folder.pathOf("v.gp"), "z", groups, bins, VariogramCurve{{0, 1, 2}, {0, 3, 4}});
    return folder.read("v.gp");
}

} // namespace

TEST(VariogramPictureTest, TheCurveRunsFromTheNuggetToTheSill)
{
    // One input from 0 to 2; the range is that of the box, the sample variance of 5, 6 and 10 is 7.
    const fenn::estimation::SampleSet samples({{0, 1, 2}}, {{5, 6, 10}});
    fenn::estimation::ModelSettings settings;
    settings.nugget = 0.25;
    const auto parts = fenn::estimation::makeModelParts(samples, settings);
    const VariogramCurve curve = krige::curveOfModel(*parts, 100.0);

    EXPECT_NEAR(curve.values.front(), 0.25 * 7.0, 1e-3);
    EXPECT_EQ(curve.values.back(), 7.0);
    EXPECT_GT(curve.lags.front(), 0.0);
    EXPECT_EQ(curve.lags.back(), 100.0);
}

TEST(VariogramPictureTest, BinsAreDrawnAtTheirMeanLag)
{
    EXPECT_THAT(scriptOf({}, {LagBin{0.0, 1.0, 0.75, 2.5, 2.0, 7}}), HasSubstr("\n0.75 2.5\n"));
}

TEST(VariogramPictureTest, SingleLagsAreDotsAndAreLeftOutWhereThereAreNone)
{
    const std::vector<fenn::LagGroup> groups{{0.5, 1.5, 2.0, 2}};

    EXPECT_THAT(scriptOf(groups, {}), HasSubstr("\n0.5 1.5\n"));
    EXPECT_THAT(scriptOf(groups, {}), HasSubstr("title 'pairs at one lag'"));
    EXPECT_THAT(scriptOf({}, {}), Not(HasSubstr("title 'pairs at one lag'")));
}

TEST(VariogramPictureTest, AFewPairsFarAboveTheOthersDoNotPressTheRestAgainstTheAxis)
{
    std::vector<fenn::LagGroup> groups(100, fenn::LagGroup{1.0, 2.0, 2.0, 2});
    groups[50].empirical = 1e6;

    EXPECT_THAT(scriptOf(groups, {}), HasSubstr("set yrange [0:4.4]")); // 1.1 times the curve's 4
}
