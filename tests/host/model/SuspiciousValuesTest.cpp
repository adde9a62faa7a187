#include "host/model/SuspiciousValues.h"

#include <cmath>

#include <gmock/gmock.h>

using krige::findSuspiciousValues;
using krige::SuspiciousValue;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

std::vector<double> found(const std::vector<double>& values)
{
    std::vector<double> suspects;
    for (const SuspiciousValue& suspect : findSuspiciousValues(values))
        suspects.push_back(suspect.value);
    return suspects;
}

} // namespace

TEST(SuspiciousValuesTest, AFarValueThatRepeatsIsFoundWithItsCountAndTheOthersRange)
{
    const std::vector<SuspiciousValue> suspects = findSuspiciousValues({3.0, -9999.0, 1.0, std::nan(""), -9999.0, 7.0});

    ASSERT_EQ(suspects.size(), 1U);
    EXPECT_EQ(suspects[0].value, -9999.0);
    EXPECT_EQ(suspects[0].count, 2U);
    EXPECT_EQ(suspects[0].least, 1.0);
    EXPECT_EQ(suspects[0].greatest, 7.0);
}

TEST(SuspiciousValuesTest, AGreatestValueIsFoundToo)
{
    EXPECT_THAT(found({1e20, 1.0, 2.0, 1e20}), ElementsAre(1e20));
}

TEST(SuspiciousValuesTest, SeveralMarksAreFoundOneAfterAnother)
{
    EXPECT_THAT(found({1e20, -9999.0, 1.0, 2.0, 1e20, -9999.0}), ElementsAre(1e20, -9999.0));
}

TEST(SuspiciousValuesTest, ThreeRangesAreFar)
{
    EXPECT_THAT(found({0.0, 1.0, 4.0, 4.0}), IsEmpty()); // just three ranges away
    EXPECT_THAT(found({0.0, 1.0, 4.1, 4.1}), ElementsAre(4.1));
}

TEST(SuspiciousValuesTest, OneRangeIsFarForNines)
{
    EXPECT_THAT(found({0.0, 50.0, -99.0, -99.0}), ElementsAre(-99.0));
    EXPECT_THAT(found({0.0, 50.0, 199.9, 199.9}), IsEmpty());
    EXPECT_THAT(found({0.0, 50.0, 999.9, 999.9}), ElementsAre(999.9));
    EXPECT_THAT(found({0.0, 99.0, -99.0, -99.0}), IsEmpty()); // just one range away
    EXPECT_THAT(found({0.0, 5.0, 9.0, -9.0, -9.0}), IsEmpty());
}

TEST(SuspiciousValuesTest, WhatDoesNotRepeatIsNotFound)
{
    EXPECT_THAT(found({0.0, 1.0, -9999.0}), IsEmpty());
}

TEST(SuspiciousValuesTest, OthersOfASingleValueHaveNoRange)
{
    EXPECT_THAT(found({0.0, 0.0, 1.0, 1.0}), IsEmpty());
    EXPECT_THAT(found({5.0, 5.0}), IsEmpty());
    EXPECT_THAT(found({}), IsEmpty());
}

TEST(SuspiciousValuesTest, AWarningNamesTheColumnTheValueAndTheOption)
{
    EXPECT_THAT(krige::warningsOfColumn("z", {1.0, 2.0, -9999.0, -9999.0}),
                ElementsAre("warning: column 'z': -9999 stands in 2 rows, far from all other values (1 to 2); if it "
                            "means that there is no value, add --missing -9999"));
}
