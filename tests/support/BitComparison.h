#ifndef FENN_TESTS_SUPPORT_BITCOMPARISON_H
#define FENN_TESTS_SUPPORT_BITCOMPARISON_H

#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Bits.h"

namespace fenn::test
{

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
