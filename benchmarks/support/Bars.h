#ifndef FENN_BENCHMARKS_SUPPORT_BARS_H
#define FENN_BENCHMARKS_SUPPORT_BARS_H

#include <cstdio>
#include <string>

namespace fenn::benchmarks
{

/// Prints one figure beside the bar that it is held to, in the form that script/bench collects.
inline void report(const std::string& path, const std::string& what, double figure, const std::string& unit,
                   const std::string& bar, bool isMet)
{
    std::printf("BAR | %s | %s | %.4g %s | %s | %s |\n", path.c_str(), what.c_str(), figure, unit.c_str(), bar.c_str(),
                isMet ? "yes" : "**no**");
    std::fflush(stdout);
}

inline std::string barText(const char* relation, double bar)
{
    char text[32];
    std::snprintf(text, sizeof text, "%s %.4g", relation, bar);
    return text;
}

inline void reportAtLeast(const std::string& path, const std::string& what, double figure, const std::string& unit,
                          double bar)
{
    report(path, what, figure, unit, barText(">=", bar), figure >= bar);
}

inline void reportAtMost(const std::string& path, const std::string& what, double figure, const std::string& unit,
                         double bar)
{
    report(path, what, figure, unit, barText("<=", bar), figure <= bar);
}

} // namespace fenn::benchmarks

#endif
