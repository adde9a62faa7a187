#include "host/pictures/QuantityName.h"

#include <gtest/gtest.h>

using krige::nameQuantity;
using krige::squareOf;

TEST(QuantityNameTest, AUnitInBracketsIsTakenFromTheName)
{
    EXPECT_EQ(nameQuantity("zinc [ppm]", "").name, "zinc");
    EXPECT_EQ(nameQuantity("zinc [ppm]", "").unit, "ppm");
    EXPECT_EQ(nameQuantity("depth(m)", "").text(), "depth (m)");
    EXPECT_EQ(nameQuantity("speed [m (per s)]", "").unit, "m (per s)");
}

TEST(QuantityNameTest, WhatAPersonSaysWins)
{
    EXPECT_EQ(nameQuantity("zinc [ppm]", "mg/kg").text(), "zinc (mg/kg)");
    EXPECT_EQ(nameQuantity("zinc", "mg/kg").text(), "zinc (mg/kg)");
}

TEST(QuantityNameTest, ANameWithoutAUnitStaysWhole)
{
    for (const char* name : {"zinc", "[ppm]", "zinc []", "zinc [ppm] old", "zinc ppm]", "", "]"})
        EXPECT_EQ(nameQuantity(name, "").text(), name);
}

TEST(SquareOfTest, AUnitOfSeveralSignsIsBracketed)
{
    EXPECT_EQ(squareOf("ppm"), "ppm\xc2\xb2");
    EXPECT_EQ(squareOf("mg/kg"), "(mg/kg)\xc2\xb2");
    EXPECT_EQ(squareOf(""), "");
}
