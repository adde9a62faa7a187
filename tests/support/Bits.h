#ifndef FENN_TESTS_SUPPORT_BITS_H
#define FENN_TESTS_SUPPORT_BITS_H

#include <cmath>
#include <cstdint>
#include <cstring>

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

} // namespace fenn::test

#endif
