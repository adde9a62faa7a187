#ifndef FENN_BENCHMARKS_SUPPORT_BARS_H
#define FENN_BENCHMARKS_SUPPORT_BARS_H

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace fenn::benchmarks
{

/// One figure, measured several times in one run of a program.
class Repeats
{
public:
    explicit Repeats(std::vector<double> values_) : values(std::move(values_)) {}

    /// figure() called numRepeats times.
    template <class Figure>
    Repeats(int numRepeats, const Figure& figure)
    {
        for (int r = 0; r < numRepeats; ++r)
            values.push_back(figure());
    }

    /// The middle value; of an even number the mean of the two in the middle; 0 of none.
    double median() const
    {
        std::vector<double> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        const std::size_t half = sorted.size() / 2;
        if (sorted.empty())
            return 0.0;
        return sorted.size() % 2 == 1 ? sorted[half] : (sorted[half - 1] + sorted[half]) / 2.0;
    }

    const std::vector<double>& all() const
    {
        return values;
    }

private:
    std::vector<double> values;
};

/// Prints one figure beside the bar that it is held to, in the form that script/bench collects:
///
///     BAR | path | case | median unit | bar | met | every value, separated by spaces |
///
/// script/bench runs each program several times and takes the median of all values of a row: path and case must be the
/// same in every run. Unit "x" is for ratios of times alone: with a path "P, beside Q" it is rendered as "times as fast
/// as Q", and a ratio that has to stay below its bar as its reciprocal.
inline void report(const std::string& path, const std::string& what, const Repeats& figure, const std::string& unit,
                   const std::string& bar, const std::string& met)
{
    std::printf("BAR | %s | %s | %.4g %s | %s | %s |", path.c_str(), what.c_str(), figure.median(), unit.c_str(),
                bar.c_str(), met.c_str());
    for (const double value : figure.all())
        std::printf(" %.6g", value);
    std::printf(" |\n");
    std::fflush(stdout);
}

inline const char* metText(bool isMet)
{
    return isMet ? "yes" : "**no**";
}

inline std::string barText(const char* relation, double bar)
{
    char text[32];
    std::snprintf(text, sizeof text, "%s %.4g", relation, bar);
    return text;
}

inline void reportAtLeast(const std::string& path, const std::string& what, const Repeats& figure,
                          const std::string& unit, double bar)
{
    report(path, what, figure, unit, barText(">=", bar), metText(figure.median() >= bar));
}

inline void reportAtMost(const std::string& path, const std::string& what, const Repeats& figure,
                         const std::string& unit, double bar)
{
    report(path, what, figure, unit, barText("<=", bar), metText(figure.median() <= bar));
}

inline void reportAtLeast(const std::string& path, const std::string& what, double figure, const std::string& unit,
                          double bar)
{
    reportAtLeast(path, what, Repeats({figure}), unit, bar);
}

inline void reportAtMost(const std::string& path, const std::string& what, double figure, const std::string& unit,
                         double bar)
{
    reportAtMost(path, what, Repeats({figure}), unit, bar);
}

/// figure: the time of yardstick over the time of path, both for the same work; above 1 where path is the faster.
inline void reportTimesAsFast(const std::string& path, const std::string& yardstick, const std::string& what,
                              const Repeats& figure, double bar)
{
    reportAtLeast(path + ", beside " + yardstick, what, figure, "x", bar);
}

inline void reportTimesAsFast(const std::string& path, const std::string& yardstick, const std::string& what,
                              double figure, double bar)
{
    reportTimesAsFast(path, yardstick, what, Repeats({figure}), bar);
}

/// A figure that is held to no bar.
inline void reportFigure(const std::string& path, const std::string& what, const Repeats& figure,
                         const std::string& unit)
{
    report(path, what, figure, unit, "none", "");
}

} // namespace fenn::benchmarks

#endif
