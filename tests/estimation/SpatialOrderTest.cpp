#include "estimation/SpatialOrder.h"

#include <algorithm>
#include <numeric>

#include <gtest/gtest.h>

#include "tests/support/Samples.h"

namespace
{

using fenn::estimation::orderInSpace;

TEST(SpatialOrderTest, EveryIndexStandsInItOnce)
{
    for (const std::size_t count : {1U, 7U, 8U, 9U, 64U, 1001U})
    {
        std::vector<std::size_t> order =
            orderInSpace(fenn::test::randomValues(3, count, 0.0, 1.0, count), {1.0, 1.0, 1.0}, 8);
        std::sort(order.begin(), order.end());
        std::vector<std::size_t> all(count);
        std::iota(all.begin(), all.end(), std::size_t{0});
        EXPECT_EQ(order, all);
    }
}

TEST(SpatialOrderTest, HalvesAreCutAlongTheLongestVariableAtWholeBoxes)
{
    // Along x alone: 0 to 3 and 4 to 6 in boxes of two, in each of which indices ascend.
    const std::vector<std::vector<double>> columns{{6.0, 5.0, 4.0, 3.0, 2.0, 1.0, 0.0},
                                                   {0.0, 1.0, 0.0, 1.0, 0.0, 1.0, 0.0}};
    EXPECT_EQ(orderInSpace(columns, {1.0, 1.0}, 2), (std::vector<std::size_t>{5, 6, 3, 4, 1, 2, 0}));
}

TEST(SpatialOrderTest, ScalesSayWhatIsLong)
{
    const std::vector<std::vector<double>> columns{{0.0, 100.0, 0.0, 100.0}, {0.0, 1.0, 2.0, 3.0}};
    EXPECT_EQ(orderInSpace(columns, {0.001, 1.0}, 2), (std::vector<std::size_t>{0, 1, 2, 3}));
    EXPECT_EQ(orderInSpace(columns, {1.0, 1.0}, 2), (std::vector<std::size_t>{0, 2, 1, 3}));
}

TEST(SpatialOrderTest, EqualValuesAreToldApartByTheirIndex)
{
    EXPECT_EQ(orderInSpace({std::vector<double>(6, 2.5)}, {1.0}, 2), (std::vector<std::size_t>{0, 1, 2, 3, 4, 5}));
}

TEST(SpatialOrderTest, BoxesAreSmall)
{
    // 32 points of 4096 in the unit square: boxes of a 128th of its area, hardly longer than twice their width.
    const auto columns = fenn::test::randomValues(2, 4096, 0.0, 1.0, 3);
    const std::vector<std::size_t> order = orderInSpace(columns, {1.0, 1.0}, 32);
    for (std::size_t begin = 0; begin < 4096; begin += 32)
    {
        for (const std::vector<double>& column : columns)
        {
            double low = 1.0;
            double high = 0.0;
            for (std::size_t i = begin; i < begin + 32; ++i)
            {
                low = std::min(low, column[order[i]]);
                high = std::max(high, column[order[i]]);
            }
            EXPECT_LT(high - low, 0.2);
        }
    }
}

} // namespace
