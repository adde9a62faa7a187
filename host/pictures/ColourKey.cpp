#include "host/pictures/ColourKey.h"

#include <algorithm>
#include <cmath>

namespace krige
{

namespace
{

constexpr double lowQuantile = 0.005;
constexpr double highQuantile = 0.995;
constexpr double toleratedShare = 0.1; // of the span between the quantiles

void dropOthers(std::vector<double>& values)
{
    values.erase(std::remove_if(values.begin(), values.end(), [](double value) { return !std::isfinite(value); }),
                 values.end());
}

/// Of sorted values: the one that so many of them lie below.
double quantileOf(const std::vector<double>& sorted, double share)
{
    const double place = share * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(place);
    const double part = place - static_cast<double>(below);
    const double next = sorted[std::min(below + 1, sorted.size() - 1)];
    return sorted[below] * (1.0 - part) + next * part;
}

void notePassed(ColourKey& key, const std::vector<double>& shown)
{
    for (const double value : shown)
    {
        if (!std::isfinite(value))
            continue;
        key.isPassedBelow = key.isPassedBelow || value < key.limits.low;
        key.isPassedAbove = key.isPassedAbove || value > key.limits.high;
    }
}

} // namespace

const Palette& estimatePalette()
{
    static const Palette viridis{"#440154", "#472d7b", "#3b528b", "#2c728e", "#21918c",
                                 "#28ae80", "#5ec962", "#addc30", "#fde725"};
    return viridis;
}

const Palette& uncertaintyPalette()
{
    static const Palette browns{"#ffffe5", "#fff7bc", "#fee391", "#fec44f", "#fe9929",
                                "#ec7014", "#cc4c02", "#993404", "#662506"};
    return browns;
}

const Palette& errorPalette()
{
    static const Palette blueToRed{"#2166ac", "#67a9cf", "#d1e5f0", "#f7f7f7", "#fddbc7", "#ef8a62", "#b2182b"};
    return blueToRed;
}

void chooseLimits(ColourKey& key, std::vector<double> typical, const std::vector<double>& shown)
{
    dropOthers(typical);
    std::sort(typical.begin(), typical.end());
    key.limits = rangeAround(typical, 0.0);
    if (!typical.empty() && typical.front() < typical.back())
    {
        const double low = quantileOf(typical, lowQuantile);
        const double high = quantileOf(typical, highQuantile);
        const double tolerated = 2 * toleratedShare * (high / 2 - low / 2);
        const AxisRange narrower{typical.front() < low - tolerated ? low : typical.front(),
                                 typical.back() > high + tolerated ? high : typical.back()};
        if (narrower.low < narrower.high)
            key.limits = rangeAround({narrower.low, narrower.high}, 0.0);
    }
    notePassed(key, shown);
}

void chooseSymmetricLimits(ColourKey& key, const std::vector<double>& errors)
{
    std::vector<double> sizes;
    for (const double error : errors)
        sizes.push_back(std::fabs(error));
    sizes.push_back(0.0);
    ColourKey ofSizes;
    chooseLimits(ofSizes, sizes, {});
    const double largest = ofSizes.limits.high > 0.0 ? ofSizes.limits.high : 1.0;
    key.limits = {-largest, largest};
    notePassed(key, errors);
}

std::string paletteCommand(const Palette& palette)
{
    std::string text = "set palette defined (";
    for (std::size_t i = 0; i < palette.size(); ++i)
        text += (i == 0 ? "" : ", ") + std::to_string(i) + " '" + palette[i] + "'";
    return text + ")\n";
}

} // namespace krige
