#ifndef FENN_HOST_PICTURES_COLOURKEY_H
#define FENN_HOST_PICTURES_COLOURKEY_H

#include <string>
#include <vector>

#include "host/pictures/Axis.h"

namespace krige
{

/// Colours in order, evenly spaced, as #rrggbb.
using Palette = std::vector<std::string>;

/// For estimates: viridis, whose lightness rises evenly, so that it can be read in grey and by colour-blind people.
const Palette& estimatePalette();

/// For standard errors and variances: light to dark brown, which nobody takes for a map of estimates.
const Palette& uncertaintyPalette();

/// For errors: blue below 0, white at 0, red above. Red and green are never apart; in grey the signs are alike, so
/// that their marks have to differ.
const Palette& errorPalette();

/// What colours stand for.
struct ColourKey
{
    Palette palette;
    AxisRange limits;
    bool isPassedBelow = false; // some values lie below the limits
    bool isPassedAbove = false;
    std::string name;
    std::string unit;
};

/// Limits that a few extreme values do not stretch: the quantiles of 0.5 and 99.5 % of typical, or its ends where these
/// lie within a tenth of the span beyond. shown: everything that is drawn; what of it lies beyond is noted. Values that
/// are not finite count for nothing.
void chooseLimits(ColourKey& key, std::vector<double> typical, const std::vector<double>& shown);

/// As far below 0 as above, so that 0 is the middle of a diverging palette.
void chooseSymmetricLimits(ColourKey& key, const std::vector<double>& errors);

/// `set palette ...`.
std::string paletteCommand(const Palette& palette);

} // namespace krige

#endif
