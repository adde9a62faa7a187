#include "host/page/VariogramSection.h"

#include <gmock/gmock.h>

using fenn::analysis::LagBin;
using krige::LagUnit;
using krige::VariogramCurve;
using krige::variogramSection;
using krige::VariogramView;
using testing::HasSubstr;
using testing::Not;

namespace
{

VariogramView view()
{
    return {"z<",
            {LagBin{0.0, 1.0, 0.75, 2.5, 2.0, 7}, LagBin{1.0, 2.0, 1.5, 1.0, 3.5, 12}},
            VariogramCurve{{0, 1, 2}, {0, 3, 4}, 4.0, 1.5},
            "pairs: 19 pairs\n"};
}

} // namespace

TEST(VariogramSectionTest, BinsCarryTheirPairsOnTheSideWhereTheModelIsNot)
{
    const std::string html = variogramSection({view()}, LagUnit{100.0, "km"}, 0, "");

    EXPECT_THAT(html, HasSubstr("class=\"count above\">7</text>"));
    EXPECT_THAT(html, HasSubstr("class=\"count below\">12</text>"));
    EXPECT_THAT(html, HasSubstr(">lag (km)</text>"));
    EXPECT_THAT(html, HasSubstr(">200</text>")); // the largest lag in km
    EXPECT_THAT(html, HasSubstr("<pre>pairs: 19 pairs"));
}

TEST(VariogramSectionTest, ADriftExplainsALowerLine)
{
    EXPECT_THAT(variogramSection({view()}, LagUnit(), 0, ""), Not(HasSubstr("a trend among them")));
    EXPECT_THAT(variogramSection({view()}, LagUnit(), 1, ""), HasSubstr("a trend among them"));
}

TEST(VariogramSectionTest, WithoutOneItSaysWhy)
{
    EXPECT_EQ(variogramSection({}, LagUnit(), 0, "too few <points>."),
              "<p>There is none: too few &lt;points&gt;.</p>\n");
}
