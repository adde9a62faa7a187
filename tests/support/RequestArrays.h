#ifndef FENN_TESTS_SUPPORT_REQUESTARRAYS_H
#define FENN_TESTS_SUPPORT_REQUESTARRAYS_H

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/NaiveKriging.h"

namespace fenn::test
{

constexpr double unwritten = -77.25;

/// Result arrays of a request, everything unwritten at first, with a guard on both sides of each.
class ResultArrays
{
public:
    ResultArrays(std::size_t numArrays, std::size_t numTargets)
        : store(numArrays, std::vector<double>(numTargets + 2, unwritten))
    {
        for (std::vector<double>& array : store)
            pointers.push_back(array.data() + 1);
    }

    ResultArrays(const ResultArrays& other) = delete;
    ResultArrays& operator=(const ResultArrays& other) = delete;

    ~ResultArrays()
    {
        for (const std::vector<double>& array : store)
        {
            EXPECT_EQ(array.front(), unwritten);
            EXPECT_EQ(array.back(), unwritten);
        }
    }

    std::vector<double*>& arrays()
    {
        return pointers;
    }

    std::vector<double> operator[](std::size_t k) const
    {
        return {store[k].begin() + 1, store[k].end() - 1};
    }

private:
    std::vector<std::vector<double>> store;
    std::vector<double*> pointers;
};

inline std::vector<double> targetAt(const ValueArrays& targets, std::size_t t)
{
    std::vector<double> target;
    for (std::size_t v = 0; v < targets.getNumVars(); ++v)
        target.push_back(targets[v][t]);
    return target;
}

/// What a range of targets leaves behind: values up to the first failing target, unwritten from there on.
struct NaiveRequest
{
    std::vector<std::vector<double>> values; // per output variable
    std::vector<double> variances;
    std::string failure;
};

/// evaluateTarget(target) gives a NaiveResult with one estimate per output variable.
template <typename Evaluate>
NaiveRequest naiveRequest(const ValueArrays& targets, std::size_t numTargets, std::size_t numOutputVars,
                          Evaluate&& evaluateTarget)
{
    NaiveRequest request;
    request.values.assign(numOutputVars, std::vector<double>(numTargets, unwritten));
    request.variances.assign(numTargets, unwritten);
    for (std::size_t t = 0; t < numTargets && request.failure.empty(); ++t)
    {
        const NaiveResult result = evaluateTarget(targetAt(targets, t));
        request.failure = result.failure;
        if (!result.failure.empty())
            break;
        for (std::size_t o = 0; o < numOutputVars; ++o)
            request.values[o][t] = result.estimates[o];
        request.variances[t] = result.variance;
    }
    return request;
}

} // namespace fenn::test

#endif
