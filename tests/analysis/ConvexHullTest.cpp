#include "analysis/ConvexHull.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/support/Samples.h"

namespace
{

using fenn::analysis::ConvexHull;

/// Within some triangle of the places, the rim included.
bool isInSomeTriangle(const std::vector<double>& x, const std::vector<double>& y, double px, double py)
{
    const auto turn = [&](std::size_t a, std::size_t b)
    {
        return (x[b] - x[a]) * (py - y[a]) - (y[b] - y[a]) * (px - x[a]);
    };
    for (std::size_t a = 0; a < x.size(); ++a)
    {
        for (std::size_t b = 0; b < a; ++b)
        {
            for (std::size_t c = 0; c < b; ++c)
            {
                const double t1 = turn(a, b);
                const double t2 = turn(b, c);
                const double t3 = turn(c, a);
                if ((t1 >= 0.0 && t2 >= 0.0 && t3 >= 0.0) || (t1 <= 0.0 && t2 <= 0.0 && t3 <= 0.0))
                    return true;
            }
        }
    }
    return false;
}

TEST(ConvexHullTest, ContainsWhatSomeTriangleOfSamplesContains)
{
    for (std::uint64_t seed = 1; seed <= 20; ++seed)
    {
        const auto n = static_cast<std::size_t>(3 + seed);
        const std::vector<std::vector<double>> places = fenn::test::randomValues(2, n, 0.0, 1.0, seed);
        const ConvexHull hull(places[0], places[1]);
        const std::vector<std::vector<double>> targets = fenn::test::randomValues(2, 300, -0.2, 1.2, 100 + seed);
        for (std::size_t t = 0; t < 300; ++t)
        {
            EXPECT_EQ(hull.contains(targets[0][t], targets[1][t]),
                      isInSomeTriangle(places[0], places[1], targets[0][t], targets[1][t]))
                << seed << ", " << t;
        }
    }
}

TEST(ConvexHullTest, SamplesLieWithinWhateverTheUnits)
{
    std::vector<std::vector<double>> places = fenn::test::randomValues(2, 500, 0.0, 1.0, 7);
    for (double& value : places[0])
        value = 5e5 + 1e3 * value;
    for (double& value : places[1])
        value *= 1e-9;
    const ConvexHull hull(places[0], places[1]);

    for (std::size_t i = 0; i < 500; ++i)
        EXPECT_TRUE(hull.contains(places[0][i], places[1][i]));
    EXPECT_FALSE(hull.contains(5e5 + 500.0, 2e-9));
}

TEST(ConvexHullTest, RimAndVerticalSidesBelongToIt)
{
    const ConvexHull hull({0.0, 0.0, 2.0, 2.0, 0.0, 2.0, 1.0}, {0.0, 1.0, 0.0, 1.0, 0.5, 0.5, 0.5});

    EXPECT_TRUE(hull.contains(0.0, 0.25));
    EXPECT_TRUE(hull.contains(2.0, 0.75));
    EXPECT_TRUE(hull.contains(1.3, 1.0));
    EXPECT_TRUE(hull.contains(2.0, 1.0));
    EXPECT_FALSE(hull.contains(2.001, 0.5));
    EXPECT_FALSE(hull.contains(-0.001, 0.5));
    EXPECT_FALSE(hull.contains(1.0, 1.001));
}

TEST(ConvexHullTest, PlacesThatRoundOffASlantedRimBelongToIt)
{
    const ConvexHull hull({0.1, 1.7, 0.3}, {0.2, 0.9, 2.3});
    for (int k = 0; k <= 100; ++k)
    {
        const double share = 0.01 * k;
        EXPECT_TRUE(hull.contains(0.1 + share * 1.6, 0.2 + share * 0.7)) << k;
        EXPECT_TRUE(hull.contains(1.7 - share * 1.4, 0.9 + share * 1.4)) << k;
        EXPECT_TRUE(hull.contains(0.3 - share * 0.2, 2.3 - share * 2.1)) << k;
    }
    EXPECT_FALSE(hull.contains(0.9, 0.55 - 1e-9));
}

TEST(ConvexHullTest, ANotchOfTheBoxIsOutside)
{
    const ConvexHull triangle({0.0, 1.0, 0.0}, {0.0, 0.0, 1.0});

    EXPECT_TRUE(triangle.contains(0.5, 0.5));
    EXPECT_FALSE(triangle.contains(0.51, 0.5));
    EXPECT_FALSE(triangle.contains(1.0, 1.0));
}

TEST(ConvexHullTest, OfSamplesOnALineOnlyTheLineIsWithin)
{
    const ConvexHull slanted({0.0, 1.0, 3.0}, {0.0, 2.0, 6.0});
    EXPECT_TRUE(slanted.contains(2.0, 4.0));
    EXPECT_FALSE(slanted.contains(2.0, 4.1));
    EXPECT_FALSE(slanted.contains(4.0, 8.0));

    const ConvexHull vertical({5.0, 5.0, 5.0}, {0.0, 2.0, 6.0});
    EXPECT_TRUE(vertical.contains(5.0, 3.0));
    EXPECT_FALSE(vertical.contains(5.1, 3.0));
    EXPECT_FALSE(vertical.contains(5.0, 6.1));

    const ConvexHull level({0.0, 2.0, 6.0}, {5.0, 5.0, 5.0});
    EXPECT_TRUE(level.contains(3.0, 5.0));
    EXPECT_FALSE(level.contains(3.0, 5.1));
}

TEST(ConvexHullTest, OfASinglePlaceOnlyItIsWithin)
{
    const ConvexHull hull({5.0, 5.0}, {1.0, 1.0});

    EXPECT_TRUE(hull.contains(5.0, 1.0));
    EXPECT_FALSE(hull.contains(5.0, 1.1));
}

TEST(ConvexHullTest, NoNumberIsOutside)
{
    const ConvexHull hull({0.0, 1.0, 0.0}, {0.0, 0.0, 1.0});
    const double notANumber = std::numeric_limits<double>::quiet_NaN();

    EXPECT_FALSE(hull.contains(notANumber, 0.1));
    EXPECT_FALSE(hull.contains(0.1, notANumber));
}

TEST(ConvexHullTest, TheOutlineGoesAroundOnceAndCloses)
{
    const ConvexHull square({0.0, 2.0, 1.0, 2.0, 0.0}, {0.0, 4.0, 1.0, 0.0, 4.0});
    const ConvexHull triangle({0.0, 1.0, 3.0, 1.0}, {0.0, 0.5, 0.0, 2.0});

    EXPECT_EQ(square.calcOutline(), (std::vector<std::vector<double>>{{0, 2, 2, 0, 0}, {0, 0, 4, 4, 0}}));
    EXPECT_EQ(triangle.calcOutline()[1], (std::vector<double>{0, 0, 2, 0}));
}

TEST(ConvexHullTest, TheOutlineOfPlacesOnALineIsThatLine)
{
    const ConvexHull upright({1.0, 1.0}, {0.0, 3.0});

    EXPECT_EQ(upright.calcOutline(), (std::vector<std::vector<double>>{{1, 1, 1}, {0, 3, 0}}));
}

} // namespace
