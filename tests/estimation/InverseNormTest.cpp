#include "estimation/InverseNorm.h"

#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Samples.h"

namespace
{

using fenn::estimation::InverseNorm;
using fenn::estimation::StripStore;
using fenn::kernels::stripWidth;

/// Rows of the inverse that is asked for.
using Rows = std::vector<std::vector<double>>;

double oneNorm(const Rows& rows)
{
    double worst = 0.0;
    for (std::size_t j = 0; j < rows.size(); ++j)
    {
        double sum = 0.0;
        for (const std::vector<double>& row : rows)
            sum += std::fabs(row[j]);
        worst = std::max(worst, sum);
    }
    return worst;
}

double estimateOf(const Rows& inverse, const std::vector<double>& scales, std::size_t numColumns, std::size_t first = 0)
{
    const std::size_t n = inverse.size();
    InverseNorm norm(scales, numColumns);
    const StripStore store(n, (first + numColumns + stripWidth - 1) / stripWidth);
    for (int solve = 0; solve < InverseNorm::numSolves; ++solve)
    {
        norm.writeColumns(store, first);
        for (std::size_t c = first; c < first + numColumns; ++c)
        {
            std::vector<double> solution(n);
            for (std::size_t i = 0; i < n; ++i)
            {
                for (std::size_t j = 0; j < n; ++j)
                    solution[i] += inverse[i][j] * store.getColumn(c)[stripWidth * j];
            }
            for (std::size_t i = 0; i < n; ++i)
                store.getColumn(c)[stripWidth * i] = solution[i];
        }
        norm.readSolutions(store, first);
    }
    return norm.getEstimate();
}

Rows randomSymmetric(std::size_t n, std::uint64_t seed)
{
    fenn::test::RandomNumbers numbers(seed);
    Rows rows(n, std::vector<double>(n));
    for (std::size_t i = 0; i < n; ++i)
    {
        for (std::size_t j = 0; j <= i; ++j)
            rows[i][j] = rows[j][i] = std::pow(numbers.next(-1.0, 1.0), 7.0);
    }
    return rows;
}

TEST(InverseNormTest, EstimatesAreNeverAboveTheNormAndNotFarBelowIt)
{
    for (const std::size_t n : {1U, 2U, 9U, 40U, 100U})
    {
        for (std::uint64_t seed = 0; seed < 20; ++seed)
        {
            for (const std::size_t numColumns : {4U, 7U, 8U})
            {
                const Rows inverse = randomSymmetric(n, seed);
                const double estimate = estimateOf(inverse, std::vector<double>(n, 1.0), numColumns);
                EXPECT_LE(estimate, oneNorm(inverse) * (1.0 + 1e-14));
                EXPECT_GE(estimate, oneNorm(inverse) / 3.0);
            }
        }
    }
}

TEST(InverseNormTest, OneLargeColumnIsFound)
{
    Rows inverse = randomSymmetric(60, 3);
    for (std::size_t i = 0; i < 60; ++i)
        inverse[i][41] = inverse[41][i] = i % 2 == 0 ? 50.0 : -50.0;
    EXPECT_DOUBLE_EQ(estimateOf(inverse, std::vector<double>(60, 1.0), 7), oneNorm(inverse));
}

TEST(InverseNormTest, RowsAreScaledOnBothSidesAndThoseOfScaleZeroLeftOut)
{
    Rows inverse = randomSymmetric(12, 4);
    inverse[5][5] = 1e9;
    std::vector<double> scales(12, 1.0);
    scales[5] = 0.0;
    scales[7] = 20.0;
    Rows scaled = inverse;
    for (std::size_t i = 0; i < 12; ++i)
    {
        for (std::size_t j = 0; j < 12; ++j)
            scaled[i][j] *= scales[i] * scales[j];
    }
    EXPECT_NEAR(estimateOf(inverse, scales, 8), oneNorm(scaled), 1e-12 * oneNorm(scaled));
}

TEST(InverseNormTest, ColumnsMayStandAnywhereInTheStore)
{
    const Rows inverse = randomSymmetric(30, 5);
    const std::vector<double> scales(30, 1.0);
    EXPECT_EQ(estimateOf(inverse, scales, 6, 10), estimateOf(inverse, scales, 6));
}

TEST(InverseNormTest, ASolutionThatIsNotANumberIsNotPassedOver)
{
    Rows inverse = randomSymmetric(10, 6);
    inverse[2][2] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(estimateOf(inverse, std::vector<double>(10, 1.0), 4)));
}

} // namespace
