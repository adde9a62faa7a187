#ifndef FENN_BENCHMARKS_SUPPORT_SIZESWEEP_H
#define FENN_BENCHMARKS_SUPPORT_SIZESWEEP_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <string>

#include "benchmarks/support/Bars.h"

namespace fenn::benchmarks
{

/// Systems of every number of rows, for what their cost ought not to do: jump from one number to the next.
class SizeSweep
{
public:
    static constexpr std::size_t last = 80;

    /// measure(n): seconds for a system of n rows, the best of some repeats. All sizes are measured several times over,
    /// so that a busy moment does not fall on all repeats of one.
    template <class Measure>
    SizeSweep(std::size_t first_, const Measure& measure) : first(first_)
    {
        seconds.fill(std::numeric_limits<double>::infinity());
        for (int round = 0; round < 5; ++round)
        {
            for (std::size_t n = first; n <= last; ++n)
                seconds[n] = std::min(seconds[n], measure(n));
        }
    }

    /// Prints all times and, as bars, the worst of both ratios.
    void print(const std::string& path) const
    {
        std::printf("%s: us for each number of rows; beside the next multiple of eight; beside what the cube predicts "
                    "from eight rows fewer\n",
                    path.c_str());
        std::size_t worstFill = multiple, worstStep = multiple + first;
        for (std::size_t n = first; n <= last; ++n)
        {
            std::printf("%3zu %8.3f %6.2f %6.2f\n", n, 1e6 * seconds[n], besideNextMultiple(n), besideCube(n));
            if (besideNextMultiple(n) > besideNextMultiple(worstFill))
                worstFill = n;
            if (besideCube(n) > besideCube(worstStep))
                worstStep = n;
        }
        std::printf("worst: n = %zu and n = %zu\n", worstFill, worstStep);
        reportAtMost(path + " of every size", "cost beside that of the next multiple of eight rows",
                     besideNextMultiple(worstFill), "times", 1.4);
        reportAtMost(path + " of every size", "cost beside the cube from eight rows fewer", besideCube(worstStep),
                     "times", 1.3);
    }

private:
    static constexpr std::size_t multiple = 8;

    double besideNextMultiple(std::size_t n) const
    {
        return seconds[n] / seconds[(n + multiple - 1) / multiple * multiple];
    }

    /// 0 where there is nothing eight rows fewer.
    double besideCube(std::size_t n) const
    {
        if (n < first + multiple)
            return 0.0;
        const double ratio = static_cast<double>(n) / static_cast<double>(n - multiple);
        return seconds[n] / (seconds[n - multiple] * ratio * ratio * ratio);
    }

    const std::size_t first;
    std::array<double, last + 1> seconds;
};

} // namespace fenn::benchmarks

#endif
