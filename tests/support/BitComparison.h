#ifndef FENN_TESTS_SUPPORT_BITCOMPARISON_H
#define FENN_TESTS_SUPPORT_BITCOMPARISON_H

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

namespace fenn::test
{

inline std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// Equal to the bit, signs of zeros included; any NaN equals any NaN, for the compiler may swap operands.
inline bool sameBits(double a, double b)
{
    return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

/// For EXPECT_TRUE: names the first entry that differs.
inline testing::AssertionResult sameBits(const std::vector<double>& actual, const std::vector<double>& expected)
{
    if (actual.size() != expected.size())
        return testing::AssertionFailure() << actual.size() << " entries instead of " << expected.size();
    for (std::size_t i = 0; i < actual.size(); ++i)
    {
        if (!sameBits(actual[i], expected[i]))
            return testing::AssertionFailure()
                   << "entry " << i << std::hexfloat << " is " << actual[i] << ", expected " << expected[i];
    }
    return testing::AssertionSuccess();
}

} // namespace fenn::test

#endif
