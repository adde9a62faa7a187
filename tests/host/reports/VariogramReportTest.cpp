#include "host/reports/VariogramReport.h"

#include <gmock/gmock.h>

using fenn::analysis::BinnedSemivariogram;
using fenn::analysis::BinningOptions;
using fenn::analysis::LagBin;
using fenn::analysis::SphericalFit;
using krige::describeFit;
using krige::describePairs;
using krige::LagUnit;
using krige::Settings;
using testing::HasSubstr;
using testing::Not;

namespace
{

const LagUnit metres{100.0, "m"};

SphericalFit goodFit()
{
    SphericalFit fit;
    fit.sill = 8.0;
    fit.nuggetFraction = 0.25;
    fit.range = 1.5;
    fit.meanSquaredDeviation = 0.01;
    fit.hasConverged = true;
    return fit;
}

} // namespace

TEST(VariogramReportTest, PairsAreCountedOverTheBins)
{
    const BinnedSemivariogram table{{LagBin{0, 1, 0.5, 1, 1, 4}, LagBin{1, 2, 1.5, 1, 1, 6}}, 5, 5};
    BinningOptions options;
    options.maxLag = 2.0;

    EXPECT_EQ(describePairs(table, options, metres), "pairs: 10 pairs of 5 points, up to a lag of 200 m\n");
    options.direction = 45.0;
    EXPECT_EQ(
        describePairs(table, options, LagUnit()),
        "pairs: 10 pairs of 5 points, up to a lag of 2 normalised, in the direction of 45 degrees, within 22.5\n");
}

TEST(VariogramReportTest, DrawnPointsAreSaidToBeDrawn)
{
    const BinnedSemivariogram table{{LagBin{0, 1, 0.5, 1, 1, 4}}, 1000, 5};

    EXPECT_THAT(describePairs(table, {}, metres), HasSubstr("\ndrawn: 5 of 1000 points, always the same"));
}

TEST(VariogramReportTest, NoPairsNameTheWayOut)
{
    BinningOptions options;
    EXPECT_THAT(describePairs({{}, 5, 5}, options, metres), HasSubstr("\nhint: no pair is so near; raise --max-lag\n"));
    options.direction = 0.0;
    EXPECT_THAT(describePairs({{}, 5, 5}, options, metres), HasSubstr("raise --max-lag or --tolerance\n"));
}

TEST(VariogramReportTest, AFitIsSaidInUnitsAndAsOptions)
{
    Settings settings;
    settings.rangeFraction = 0.5;
    settings.nugget = 0.25;

    EXPECT_EQ(describeFit(goodFit(), settings, {}, metres),
              "fit: sill 8, nugget 2 (0.25 of the sill), range 150 m; relative deviation of the bins 0.1\n"
              "fitted: --drift 0 --range 0.5 --nugget 0.25 --sill 8\n");
}

TEST(VariogramReportTest, AnAnisotropyStandsForItsScaleFactors)
{
    Settings settings;
    settings.scaleFactors = {1.0, 1.0};
    settings.anisotropy = fenn::analysis::Anisotropy(2.0, 30.0);

    EXPECT_THAT(describeFit(goodFit(), settings, {}, metres),
                HasSubstr("fitted: --drift 0 --range 1 --nugget 0 --anisotropy 2,30 --sill 8\n"));
}

TEST(VariogramReportTest, DoubtfulFitsGiveHints)
{
    SphericalFit rising = goodFit();
    rising.isRangeAtUpperBound = true;
    SphericalFit level = goodFit();
    level.nuggetFraction = 1.0;
    SphericalFit unsettled = goodFit();
    unsettled.hasConverged = false;
    Settings drifting;
    drifting.driftOrder = 1;

    EXPECT_THAT(describeFit(rising, {}, {}, metres), HasSubstr("hint: the semivariogram still rises"));
    EXPECT_THAT(describeFit(level, {}, {}, metres), HasSubstr("hint: the semivariogram does not rise"));
    EXPECT_THAT(describeFit(unsettled, {}, {}, metres), HasSubstr("hint: the fit did not settle"));
    EXPECT_THAT(describeFit(goodFit(), drifting, {}, metres),
                HasSubstr("hint: the semivariogram is that of the values"));
    BinningOptions directed;
    directed.direction = 45.0;
    EXPECT_THAT(describeFit(goodFit(), {}, directed, metres), HasSubstr("hint: the fit is that of one direction"));
    EXPECT_THAT(describeFit(goodFit(), {}, {}, metres), Not(HasSubstr("hint")));
}

TEST(VariogramReportTest, ADirectionStandsBehindTheName)
{
    BinningOptions options;
    EXPECT_EQ(krige::nameWithDirection("z", options), "z");
    options.direction = 45.0;
    EXPECT_EQ(krige::nameWithDirection("z", options), "z in direction 45 +- 22.5");
}
