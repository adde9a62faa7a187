#include "surrogatemodel_kriging/kernels/SolveKernels.h"

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/kernels/ScalarSolveKernels.h"
#include "tests/support/BitComparison.h"
#include "tests/support/RunnableTargets.h"
#include "tests/support/Samples.h"

namespace
{

using fenn::kernels::StripGroup;
using fenn::kernels::stripWidth;
using fenn::test::forEachRunnableTarget;
using fenn::test::RandomNumbers;
using fenn::test::sameBits;

constexpr double limit = 1e150;

/// Sizes around every tile and beyond the one from which two groups are mixed.
std::vector<std::size_t> sizes()
{
    std::vector<std::size_t> result;
    for (std::size_t n = 0; n <= 67; ++n)
        result.push_back(n);
    for (const std::size_t n : {97U, 131U, 159U, 160U, 161U, 162U, 163U, 164U, 165U, 166U, 167U, 251U, 709U})
        result.push_back(n);
    return result;
}

/// Strips in a store of exactly the size they take, aligned to 64 bytes.
class Strips
{
public:
    Strips(std::size_t n, std::size_t numStrips_) : numStrips(numStrips_), stride(stripWidth * (n + 1))
    {
        const std::size_t numRows = numStrips == 0 ? 0 : stride * (numStrips - 1) + stripWidth * n;
        rows.resize(numRows == 0 ? 1 : numRows / stripWidth); // never without an address
    }

    StripGroup group()
    {
        return {rows[0].entries, stride, numStrips};
    }

    template <class Numbers>
    void fill(const Numbers& number)
    {
        for (Row& row : rows)
        {
            for (double& entry : row.entries)
                entry = number();
        }
    }

    std::vector<double> entries() const
    {
        std::vector<double> result;
        for (const Row& row : rows)
            result.insert(result.end(), row.entries, row.entries + stripWidth);
        return result;
    }

    std::size_t numStrips;
    std::size_t stride;

private:
    struct alignas(64) Row
    {
        double entries[stripWidth];
    };
    std::vector<Row> rows;
};

/// Rows of factors in shuffled places, as after a factorisation.
class Factors
{
public:
    Factors(std::size_t n, std::uint64_t seed) : elements(n * n), rows(n), numbers(seed)
    {
        for (std::size_t i = 0; i < n; ++i)
            rows[i] = elements.data() + (n % 7 == 0 ? i : i * 7 % n) * n;
        for (double& element : elements)
            element = numbers.next(-1.0, 1.0) / static_cast<double>(n);
        for (std::size_t i = 0; i < n; ++i)
            at(i, i) = numbers.next(0.5, 2.0);
    }

    double& at(std::size_t i, std::size_t j)
    {
        return elements[static_cast<std::size_t>(rows[i] - elements.data()) + j];
    }

    const double* const* table() const
    {
        return rows.data();
    }

private:
    std::vector<double> elements;
    std::vector<const double*> rows;
    RandomNumbers numbers;
};

/// Mostly ordinary numbers, now and then one that a rule might get wrong.
double oddNumber(RandomNumbers& numbers)
{
    const double odd[] = {0.0,
                          -0.0,
                          std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity(),
                          std::numeric_limits<double>::denorm_min(),
                          -3e-310,
                          1e300};
    const double choice = numbers.next(0.0, 200.0);
    return choice < 8.0 ? odd[static_cast<std::size_t>(choice)] : numbers.next(-1.0, 1.0);
}

template <class Fill>
void expectScalarBits(std::size_t n, std::size_t numBack, std::size_t numForward, Factors& factors, const Fill& fill)
{
    Strips back(n, numBack), forward(n, numForward);
    back.fill(fill);
    forward.fill(fill);
    Strips expectedBack = back, expectedForward = forward;
    Strips apartBack = back, apartForward = forward;
    const bool isBeyond = fenn::kernels::scalar::substituteBack(factors.table(), n, expectedBack.group(), limit);
    fenn::kernels::scalar::substituteForward(factors.table(), n, expectedForward.group());

    EXPECT_EQ(fenn::kernels::substituteBothWays(factors.table(), n, back.group(), forward.group(), limit), isBeyond);
    EXPECT_EQ(fenn::kernels::substituteBack(factors.table(), n, apartBack.group(), limit), isBeyond);
    fenn::kernels::substituteForward(factors.table(), n, apartForward.group());

    EXPECT_TRUE(sameBits(back.entries(), expectedBack.entries()));
    EXPECT_TRUE(sameBits(forward.entries(), expectedForward.entries()));
    EXPECT_TRUE(sameBits(apartBack.entries(), expectedBack.entries()));
    EXPECT_TRUE(sameBits(apartForward.entries(), expectedForward.entries()));
}

TEST(SolveKernelsTest, SubstitutionsHaveTheBitsOfThePlainLoops)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t n : sizes())
            {
                SCOPED_TRACE(std::string(name) + ", size " + std::to_string(n));
                Factors factors(n, 1 + n);
                RandomNumbers numbers(2 + n);
                for (const auto& [numBack, numForward] : {std::pair(4, 4), std::pair(4, 1), std::pair(3, 2),
                                                          std::pair(2, 3), std::pair(1, 4), std::pair(4, 0)})
                    expectScalarBits(n, static_cast<std::size_t>(numBack), static_cast<std::size_t>(numForward),
                                     factors, [&] { return numbers.next(-1.0, 1.0); });
            }
        });
}

TEST(SolveKernelsTest, OddNumbersPassThroughAsInThePlainLoops)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t n : {1U, 2U, 7U, 8U, 9U, 33U, 67U, 131U, 167U})
            {
                SCOPED_TRACE(std::string(name) + ", size " + std::to_string(n));
                Factors factors(n, 3 + n);
                RandomNumbers numbers(4 + n);
                factors.at(n / 2, n / 3) = -0.0;
                factors.at(n / 3, n / 2) = std::numeric_limits<double>::denorm_min();
                expectScalarBits(n, 4, 4, factors, [&] { return oddNumber(numbers); });
                factors.at(n - 1, 0) = std::numeric_limits<double>::infinity();
                factors.at(0, n - 1) = std::numeric_limits<double>::quiet_NaN();
                expectScalarBits(n, 4, 4, factors, [&] { return oddNumber(numbers); });
            }
        });
}

TEST(SolveKernelsTest, ANumberBeyondTheLimitIsReportedWhereverItStands)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t n : {5U, 33U, 161U})
            {
                for (std::size_t lane = 0; lane < 4 * stripWidth; ++lane)
                {
                    SCOPED_TRACE(std::string(name) + ", size " + std::to_string(n) + ", lane " + std::to_string(lane));
                    const Factors factors(n, 5);
                    Strips back(n, 4), forward(n, 4);
                    back.fill([] { return 1.0; });
                    EXPECT_FALSE(
                        fenn::kernels::substituteBothWays(factors.table(), n, back.group(), forward.group(), limit));

                    back.fill([] { return 1.0; });
                    back.group()
                        .strips[back.stride * (lane / stripWidth) + stripWidth * (lane % n) + lane % stripWidth] =
                        -1e152;
                    EXPECT_TRUE(
                        fenn::kernels::substituteBothWays(factors.table(), n, back.group(), forward.group(), limit));
                }
            }
        });
}

TEST(SolveKernelsTest, TheLimitItselfIsNotBeyondIt)
{
    const double one = 1.0;
    const double* const rows[] = {&one};
    forEachRunnableTarget(
        [&](const char* name)
        {
            SCOPED_TRACE(name);
            Strips back(1, 4);
            back.fill([] { return -limit; });
            EXPECT_FALSE(fenn::kernels::substituteBack(rows, 1, back.group(), limit));
        });
}

TEST(SolveKernelsTest, NotANumberIsNotBeyondTheLimit)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            const Factors factors(161, 6);
            Strips back(161, 4), forward(161, 4);
            back.fill([] { return std::numeric_limits<double>::quiet_NaN(); });
            EXPECT_FALSE(fenn::kernels::substituteBothWays(factors.table(), 161, back.group(), forward.group(), limit));
            EXPECT_FALSE(fenn::kernels::substituteBack(factors.table(), 161, back.group(), limit));
        });
}

TEST(SolveKernelsTest, ProductsAreRoundedBeforeTheirSubtraction)
{
    // The square of 1 + 2^-30 rounds to 1 + 2^-29; fused, -2^-60 would be left.
    constexpr std::size_t n = 162;
    const double value = 1.0 + 0x1p-30;
    forEachRunnableTarget(
        [&](const char* name)
        {
            SCOPED_TRACE(name);
            Factors factors(n, 7);
            for (std::size_t i = 0; i < n; ++i)
            {
                for (std::size_t j = 0; j < n; ++j)
                    factors.at(i, j) = i == j ? 1.0 : 0.0;
            }
            // Only the first entry is not zero, or, backwards, only the last: every other one is one product.
            for (std::size_t i = 1; i < n; ++i)
                factors.at(i, 0) = factors.at(n - 1 - i, n - 1) = value;
            Strips back(n, 4), forward(n, 4);
            back.fill([] { return 1.0 + 0x1p-29; });
            forward.fill([] { return 1.0 + 0x1p-29; });
            for (std::size_t lane = 0; lane < 4 * stripWidth; ++lane)
            {
                const std::size_t start = lane / stripWidth * back.stride + lane % stripWidth;
                forward.group().strips[start] = value;
                back.group().strips[start + stripWidth * (n - 1)] = value;
            }
            factors.at(n - 1, 0) = factors.at(0, n - 1) = value;
            fenn::kernels::substituteBothWays(factors.table(), n, back.group(), forward.group(), limit);
            for (std::size_t lane = 0; lane < 4 * stripWidth; ++lane)
            {
                const std::size_t start = lane / stripWidth * back.stride + lane % stripWidth;
                for (std::size_t i = 1; i < n; ++i)
                {
                    EXPECT_EQ(forward.group().strips[start + stripWidth * i], 0.0);
                    EXPECT_EQ(back.group().strips[start + stripWidth * (n - 1 - i)], 0.0);
                }
            }
        });
}

TEST(SolveKernelsTest, PermutingMovesRowsOfEveryStrip)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (const std::size_t n : {0U, 1U, 5U, 33U})
            {
                SCOPED_TRACE(std::string(name) + ", size " + std::to_string(n));
                RandomNumbers numbers(8);
                std::vector<int> order(n);
                for (std::size_t i = 0; i < n; ++i)
                    order[i] = static_cast<int>(n - 1 - i);
                Strips from(n, 3), to(n, 3), expected(n, 3);
                from.fill([&] { return oddNumber(numbers); });
                fenn::kernels::scalar::permuteRows(order.data(), n, from.group(), expected.group());
                fenn::kernels::permuteRows(order.data(), n, from.group(), to.group());
                for (std::size_t s = 0; s < 3; ++s)
                {
                    for (std::size_t e = 0; e < stripWidth * n; ++e)
                        EXPECT_TRUE(sameBits(to.group().strips[to.stride * s + e],
                                             expected.group().strips[expected.stride * s + e]));
                }
            }
        });
}

TEST(SolveKernelsTest, SumsHaveTheBitsOfThePlainLoops)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            for (std::size_t count = 1; count <= 67; count += count < 10 ? 1 : 19)
            {
                for (std::size_t numStrips = 0; numStrips <= 4; ++numStrips)
                {
                    for (std::size_t numSums = 0; numSums <= 7; ++numSums)
                    {
                        SCOPED_TRACE(std::string(name) + ", " + std::to_string(count) + " points, " +
                                     std::to_string(numStrips) + " strips, " + std::to_string(numSums) + " sums");
                        RandomNumbers numbers(9 + count);
                        Strips weights(count, numStrips), other(count, numStrips);
                        weights.fill([&] { return oddNumber(numbers); });
                        other.fill([&] { return oddNumber(numbers); });
                        std::vector<std::vector<double>> columns(numSums, std::vector<double>(count));
                        std::vector<const double*> values;
                        const auto startsAtZero = std::make_unique<bool[]>(numSums);
                        for (std::size_t o = 0; o < numSums; ++o)
                        {
                            for (double& value : columns[o])
                                value = oddNumber(numbers);
                            values.push_back(columns[o].data());
                            startsAtZero[o] = o % 2 == 1;
                        }
                        std::vector<double> sums(numSums * numStrips * stripWidth), expected = sums;
                        fenn::kernels::sumWeighted(weights.group(), count, values.data(), startsAtZero.get(), numSums,
                                                   sums.data());
                        fenn::kernels::scalar::sumWeighted(weights.group(), count, values.data(), startsAtZero.get(),
                                                           numSums, expected.data());
                        EXPECT_TRUE(sameBits(sums, expected));

                        std::vector<double> products(numStrips * stripWidth), expectedProducts = products;
                        fenn::kernels::sumProducts(weights.group(), other.group(), count, products.data());
                        fenn::kernels::scalar::sumProducts(weights.group(), other.group(), count,
                                                           expectedProducts.data());
                        EXPECT_TRUE(sameBits(products, expectedProducts));
                    }
                }
            }
        });
}

TEST(SolveKernelsTest, ASumStartsWithItsFirstProductUnlessItStartsAtZero)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            Strips weights(1, 1);
            weights.fill([] { return -0.0; });
            const double one = 1.0;
            const double* values[] = {&one, &one};
            const bool startsAtZero[] = {false, true};
            std::vector<double> sums(2 * stripWidth);
            fenn::kernels::sumWeighted(weights.group(), 1, values, startsAtZero, 2, sums.data());
            EXPECT_TRUE(std::signbit(sums[0]));
            EXPECT_FALSE(std::signbit(sums[stripWidth]));
        });
}

TEST(SolveKernelsTest, APlainSumStartsWithItsFirstProductUnlessItStartsAtZero)
{
    Strips weights(1, 1);
    weights.fill([] { return -0.0; });
    const double one = 1.0;
    const double* values[] = {&one, &one};
    const bool startsAtZero[] = {false, true};
    std::vector<double> sums(2 * stripWidth);

    fenn::kernels::scalar::sumWeighted(weights.group(), 1, values, startsAtZero, 2, sums.data());

    EXPECT_TRUE(std::signbit(sums[0]));
    EXPECT_FALSE(std::signbit(sums[stripWidth]));
}

TEST(SolveKernelsTest, ProductsAreRoundedBeforeTheyAreAdded)
{
    forEachRunnableTarget(
        [](const char* name)
        {
            SCOPED_TRACE(name);
            // -(1 + 2^-29) and the square of 1 + 2^-30, which rounds to 1 + 2^-29.
            Strips weights(2, 4);
            const double square = 1.0 + 0x1p-30;
            weights.fill([&] { return square; });
            for (std::size_t lane = 0; lane < 4 * stripWidth; ++lane)
                weights.group().strips[lane / stripWidth * weights.stride + lane % stripWidth] = -1.0 - 0x1p-29;
            const std::vector<double> column{1.0, square};
            const double* values[] = {column.data(), column.data(), column.data(), column.data(), column.data()};
            const bool startsAtZero[5] = {};
            std::vector<double> sums(5 * 4 * stripWidth, 1.0);
            fenn::kernels::sumWeighted(weights.group(), 2, values, startsAtZero, 5, sums.data());
            EXPECT_EQ(sums, std::vector<double>(sums.size(), 0.0));

            Strips factors(2, 4);
            factors.fill([&] { return square; });
            for (std::size_t lane = 0; lane < 4 * stripWidth; ++lane)
                factors.group().strips[lane / stripWidth * factors.stride + lane % stripWidth] = 1.0;
            std::vector<double> products(4 * stripWidth, 1.0);
            fenn::kernels::sumProducts(weights.group(), factors.group(), 2, products.data());
            EXPECT_EQ(products, std::vector<double>(products.size(), 0.0));
        });
}

} // namespace
