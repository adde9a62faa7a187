#include "host/page/ColourScale.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "analysis/Distribution.h"

namespace krige
{

namespace
{

using Colour = ColourScale::Colour;

// Equal steps apart; between them the straight line.
constexpr std::array<Colour, 17> viridis{{{68, 1, 84},
                                          {72, 24, 106},
                                          {71, 45, 123},
                                          {66, 64, 134},
                                          {59, 82, 139},
                                          {51, 99, 141},
                                          {44, 114, 142},
                                          {38, 130, 142},
                                          {33, 145, 140},
                                          {31, 160, 136},
                                          {40, 174, 128},
                                          {63, 188, 115},
                                          {94, 201, 98},
                                          {132, 212, 75},
                                          {173, 220, 48},
                                          {216, 226, 25},
                                          {253, 231, 37}}};
constexpr std::array<Colour, 11> blueToRed{{{5, 48, 97},
                                            {33, 102, 172},
                                            {67, 147, 195},
                                            {146, 197, 222},
                                            {209, 229, 240},
                                            {247, 247, 247},
                                            {253, 219, 199},
                                            {244, 165, 130},
                                            {214, 96, 77},
                                            {178, 24, 43},
                                            {103, 0, 31}}};

template <std::size_t count>
Colour between(const std::array<Colour, count>& colours, double share)
{
    const double place = share * static_cast<double>(count - 1);
    const auto below = std::min(static_cast<std::size_t>(place), count - 2);
    const double fraction = place - static_cast<double>(below);
    Colour colour{};
    for (std::size_t part = 0; part < colour.size(); ++part)
        colour[part] = static_cast<std::uint8_t>(
            std::lround(colours[below][part] * (1.0 - fraction) + colours[below + 1][part] * fraction));
    return colour;
}

} // namespace

ColourScale::ColourScale(Kind kind_, double low_, double high_) : kind(kind_), low(low_), high(high_) {}

std::size_t ColourScale::indexOf(double value) const
{
    if (std::isnan(value))
        return numColours;
    const double halfSpan = 0.5 * high - 0.5 * low; // the span may overflow
    const double share = halfSpan > 0.0 ? (0.5 * value - 0.5 * low) / halfSpan : 0.5;
    const double place = std::clamp(share, 0.0, 1.0) * static_cast<double>(numColours);
    return std::min(static_cast<std::size_t>(place), numColours - 1);
}

Colour ColourScale::colourAt(std::size_t index) const
{
    const double share = static_cast<double>(index) / static_cast<double>(numColours - 1);
    return kind == Kind::Values ? between(viridis, share) : between(blueToRed, share);
}

std::string hexOf(const Colour& colour)
{
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", static_cast<unsigned>(colour[0]),
                  static_cast<unsigned>(colour[1]), static_cast<unsigned>(colour[2]));
    return text;
}

ColourScale scaleOverValues(const std::vector<double>& values)
{
    double low = INFINITY;
    double high = -INFINITY;
    for (const double value : values)
    {
        low = std::isfinite(value) ? std::min(low, value) : low;
        high = std::isfinite(value) ? std::max(high, value) : high;
    }
    return low <= high ? ColourScale(ColourScale::Kind::Values, low, high)
                       : ColourScale(ColourScale::Kind::Values, 0.0, 1.0);
}

ColourScale scaleOverErrors(const std::vector<double>& errors)
{
    constexpr double coloured = 0.98; // one error beyond all others would leave the rest without colour
    std::vector<double> magnitudes;
    for (const double error : errors)
    {
        if (std::isfinite(error))
            magnitudes.push_back(std::fabs(error));
    }
    if (magnitudes.empty())
        return {ColourScale::Kind::Errors, -1.0, 1.0};
    std::sort(magnitudes.begin(), magnitudes.end());
    const double limit = fenn::analysis::quantileOf(magnitudes, coloured);
    return {ColourScale::Kind::Errors, -limit, limit};
}

} // namespace krige
