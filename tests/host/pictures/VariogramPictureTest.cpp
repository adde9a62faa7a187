#include "host/pictures/VariogramPicture.h"

#include <gmock/gmock.h>

#include "estimation/makeModelParts.h"
#include "tests/host/TemporaryFolder.h"

using fenn::analysis::LagBin;
using krige::LagUnit;
using krige::VariogramCurve;
using krige::test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;

namespace
{

std::string scriptOf(const std::vector<LagBin>& singleLags, const std::vector<LagBin>& bins,
                     const LagUnit& unit = LagUnit())
{
    const TemporaryFolder folder;
    krige::PictureOptions options;
    options.path = folder.pathOf("v.gp");
    krige::drawVariogram(options, {"semivariance of z", "mm"}, unit, singleLags, bins,
                         VariogramCurve{{0, 1, 2}, {0, 3, 4}, 4.0, 1.5});
    return folder.read("v.gp");
}

} // namespace

TEST(VariogramPictureTest, TheCurveRunsFromTheNuggetToTheSill)
{
    // One input from 0 to 2; the range is that of the box.
    const fenn::estimation::SampleSet samples({{0, 1, 2}}, {{5, 6, 10}});
    fenn::estimation::ModelSettings settings;
    settings.nugget = 0.25;
    const auto parts = fenn::estimation::makeModelParts(samples, settings);
    const VariogramCurve curve = krige::curveOfModel(*parts, 100.0, 12.0);

    EXPECT_NEAR(curve.values.front(), 0.25 * 12.0, 1e-3);
    EXPECT_EQ(curve.values.back(), 12.0);
    EXPECT_GT(curve.lags.front(), 0.0);
    EXPECT_EQ(curve.lags.back(), 100.0);
    EXPECT_EQ(curve.sill, 12.0);
    EXPECT_DOUBLE_EQ(curve.range, 2.0);
}

TEST(VariogramPictureTest, BinsAreDrawnAtTheirMeanLagWithTheirPairs)
{
    EXPECT_THAT(scriptOf({}, {LagBin{0.0, 1.0, 0.75, 2.5, 2.0, 7}}), HasSubstr("\n0.75 2.5 7\n"));
}

TEST(VariogramPictureTest, EverythingIsInTheUnitOfTheLags)
{
    const std::string script = scriptOf({}, {LagBin{0.0, 1.0, 0.75, 2.5, 2.0, 7}}, LagUnit{100.0, "km"});

    EXPECT_THAT(script, HasSubstr("'lag (km)'"));
    EXPECT_THAT(script, HasSubstr("'semivariance of z (mm)'"));
    EXPECT_THAT(script, HasSubstr("set xrange [0:200]\n"));
    EXPECT_THAT(script, HasSubstr("\n75 2.5 7\n"));             // the bin
    EXPECT_THAT(script, HasSubstr("\n100 3\n200 4\n"));         // the curve
    EXPECT_THAT(script, HasSubstr("set arrow from 150,0 to ")); // the range
}

TEST(VariogramPictureTest, NumbersOfPairsStandOnTheSideWhereTheModelIsNot)
{
    EXPECT_THAT(scriptOf({}, {LagBin{0.0, 1.0, 0.75, 2.5, 2.0, 7}}), HasSubstr("labels offset 0,0.9"));
    EXPECT_THAT(scriptOf({}, {LagBin{0.0, 1.0, 0.75, 1.5, 2.0, 7}}), HasSubstr("labels left offset 0.7,-0.5"));
    EXPECT_THAT(scriptOf({}, std::vector<LagBin>(31, LagBin{0.0, 1.0, 0.75, 1.5, 2.0, 7})), Not(HasSubstr("labels")));
}

TEST(VariogramPictureTest, SingleLagsAreDotsAndAreLeftOutWhereThereAreNone)
{
    const std::vector<LagBin> lags{{0.5, 0.5, 0.5, 1.5, 2.0, 2}};

    EXPECT_THAT(scriptOf(lags, {}), HasSubstr("\n0.5 1.5 2\n"));
    EXPECT_THAT(scriptOf(lags, {}), HasSubstr("title 'pairs at one lag'"));
    EXPECT_THAT(scriptOf({}, {}), Not(HasSubstr("title 'pairs at one lag'")));
}

TEST(VariogramPictureTest, AFewPairsFarAboveTheOthersDoNotPressTheRestAgainstTheAxis)
{
    std::vector<LagBin> lags(100, LagBin{1.0, 1.0, 1.0, 2.0, 2.0, 2});
    lags[50].semivariance = 1e6;

    EXPECT_THAT(scriptOf(lags, {}), HasSubstr("set yrange [0:4.6]")); // 1.15 times the curve's 4
}
