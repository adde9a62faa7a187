#include "host/reports/RangeText.h"

#include <gtest/gtest.h>

using fenn::estimation::ModelSettings;
using krige::SampleTable;

namespace
{

/// In a box of 30 by 40, whose diagonal is 50, with a sample twice.
SampleTable samplesInABox()
{
    return {"s.csv", {"x", "y\n"}, {"z"}, {{100, 130, 130, 110}, {0, 40, 40, 10}}, {{1, 3, 3, 2}}};
}

} // namespace

TEST(RangeTextTest, InputsOfOneScaleHaveOneRange)
{
    ModelSettings settings;
    settings.scaleFactors = {1.0, 1.0};
    settings.rangeInInputUnits = 20.0;

    EXPECT_EQ(krige::describeRange(samplesInABox(), settings, "m"),
              "20 m in 'x', 20 m in 'y?' (0.4 of the normalised diagonal)");
}

TEST(RangeTextTest, StretchedInputsHaveOneEach)
{
    ModelSettings settings; // each input is stretched to 2: the diagonal is 2 sqrt 2
    settings.rangeFraction = 0.5;
    settings.duplicateTolerance = 0.0;

    EXPECT_EQ(krige::describeRange(samplesInABox(), settings, ""),
              "21.2132 in 'x', 28.2843 in 'y?' (0.5 of the normalised diagonal)");
}
