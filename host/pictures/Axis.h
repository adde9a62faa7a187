#ifndef FENN_HOST_PICTURES_AXIS_H
#define FENN_HOST_PICTURES_AXIS_H

#include <string>
#include <string_view>
#include <vector>

namespace krige
{

/// From where to where an axis runs.
struct AxisRange
{
    double low = 0.0;
    double high = 1.0;

    /// As gnuplot takes it: "[low:high]".
    std::string text() const;
};

/// Around the values, widened by a share of their span on both sides, and where they are all alike; NaN and infinities
/// are ignored.
AxisRange rangeAround(const std::vector<double>& values, double margin);

struct Tick
{
    double at = 0.0;
    std::string label;
};

/// Where an axis has ticks, and what stands at them.
struct Ticks
{
    std::vector<Tick> ticks;
    bool areUpright = false;  // labels of an axis across, turned by a quarter
    double offset = 0.0;      // labels lack it: the leading digits that all share
    std::string offsetText{}; // its size, as the labels are written; empty: no offset
};

enum class AxisDirection
{
    Across,
    Up
};

/// Round values whose labels stand apart on an axis of this length in pixels. Where long labels share their leading
/// digits these become an offset; where fewer than three labels fit side by side they are turned.
Ticks chooseTicks(const AxisRange& range, double length, AxisDirection direction);

/// The width of a text in pixels, about: fonts differ.
double widthOfText(std::string_view text);

/// Of one line, in pixels.
constexpr double textHeight = 17.0;

} // namespace krige

#endif
