#include "analysis/NelderMead.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace
{

using fenn::analysis::minimise;
using Point = std::vector<double>;

double rosenbrock(const Point& p)
{
    return 100.0 * (p[1] - p[0] * p[0]) * (p[1] - p[0] * p[0]) + (1.0 - p[0]) * (1.0 - p[0]);
}

TEST(NelderMeadTest, FindsTheMinimumOfAParabola)
{
    const Point best = minimise([](const Point& p) { return (p[0] - 3.0) * (p[0] - 3.0); }, {0.0}, {1.0}, 200, 1e-6);

    EXPECT_NEAR(best[0], 3.0, 1e-5);
}

TEST(NelderMeadTest, FollowsACurvedValley)
{
    const Point best = minimise(rosenbrock, {-1.2, 1.0}, {0.5, 0.5}, 1000, 1e-8);

    EXPECT_NEAR(best[0], 1.0, 1e-4);
    EXPECT_NEAR(best[1], 1.0, 1e-4);
}

TEST(NelderMeadTest, WalksAroundARegionThatFails)
{
    const auto function = [](const Point& p)
    {
        return p[0] < 0.5 ? std::numeric_limits<double>::infinity() : p[0] * p[0] + p[1] * p[1];
    };

    const Point best = minimise(function, {2.0, 2.0}, {0.5, 0.5}, 400, 1e-7);

    EXPECT_NEAR(best[0], 0.5, 1e-3);
    EXPECT_NEAR(best[1], 0.0, 1e-3);
}

TEST(NelderMeadTest, CallsTheFunctionNoMoreOftenThanAllowed)
{
    for (const std::size_t limit : {1U, 2U, 3U, 7U, 50U})
    {
        std::size_t numCalls = 0;
        minimise(
            [&](const Point& p)
            {
                ++numCalls;
                return rosenbrock(p);
            },
            {-1.2, 1.0}, {0.5, 0.5}, limit, 0.0);
        EXPECT_EQ(numCalls, limit);
    }
}

} // namespace
