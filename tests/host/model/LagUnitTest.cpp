#include "host/model/LagUnit.h"

#include <cmath>

#include <gmock/gmock.h>

#include "estimation/makeModelParts.h"
#include "host/text/HostErrors.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/host/TemporaryFolder.h"

using krige::Distance;
using krige::LagUnit;
using krige::UsageError;
using krige::test::messageOf;
using testing::HasSubstr;

namespace
{

/// A box of 30 by 40; with one scale it is normalised to sides whose geometric mean is 2.
class LagUnitTest : public testing::Test
{
protected:
    const fenn::ModelParts& partsOf(const std::vector<double>& scaleFactors)
    {
        fenn::estimation::ModelSettings settings;
        settings.scaleFactors = scaleFactors;
        parts = fenn::estimation::makeModelParts(samples, settings);
        return *parts;
    }

private:
    fenn::estimation::SampleSet samples{{{0, 30, 10}, {0, 40, 20}}, {{1, 2, 3}}};
    std::shared_ptr<const fenn::ModelParts> parts;
};

} // namespace

TEST_F(LagUnitTest, InputsOfOneScaleHaveTheirOwnUnit)
{
    const LagUnit unit = chooseLagUnit(partsOf({3, 3}), LagUnit::Choice::Automatic, "m");

    EXPECT_EQ(unit.name, "m");
    EXPECT_DOUBLE_EQ(unit.perNormalised, std::sqrt(30.0 * 40.0) / 2.0);
    EXPECT_EQ(chooseLagUnit(partsOf({1, 1}), LagUnit::Choice::InputUnits, "").name, "input units");
}

TEST_F(LagUnitTest, OthersAndThoseWhoAskGetNormalisedLags)
{
    const LagUnit unit = chooseLagUnit(partsOf({1, 1}), LagUnit::Choice::Normalised, "m");

    EXPECT_EQ(unit.name, "normalised");
    EXPECT_EQ(unit.perNormalised, 1.0);
    EXPECT_EQ(chooseLagUnit(partsOf({}), LagUnit::Choice::Automatic, "m").name, "normalised");
    EXPECT_THAT(messageOf<UsageError>(
                    [&] {
                        chooseLagUnit(partsOf({1, 2}), LagUnit::Choice::InputUnits, "m");
                    }),
                HasSubstr("--lag units: a distance in the inputs' units needs inputs of one scale"));
}

TEST_F(LagUnitTest, DistancesBecomeNormalised)
{
    EXPECT_EQ(toNormalisedLag(partsOf({}), "--max-lag", Distance{1.5, false}), 1.5);
    EXPECT_DOUBLE_EQ(toNormalisedLag(partsOf({1, 1}), "--max-lag", Distance{std::sqrt(1200.0), true}), 2.0);
    EXPECT_THAT(messageOf<UsageError>(
                    [&] {
                        toNormalisedLag(partsOf({}), "--max-lag", Distance{900.0, true});
                    }),
                HasSubstr("--max-lag 900u: a distance in the inputs' units"));
}
