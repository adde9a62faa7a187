#ifndef FENN_HOST_PAGE_RASTERIMAGE_H
#define FENN_HOST_PAGE_RASTERIMAGE_H

#include <cstddef>
#include <string>
#include <vector>

#include "host/page/ColourScale.h"

namespace krige
{

/// A PNG of one pixel per value, row by row from the bottom as a grid has them; transparent where there is no value.
/// Throws InputError where memory is short.
std::string pngOf(const std::vector<double>& values, std::size_t numColumns, const ColourScale& colours);

/// The PNG as an address that holds the picture itself.
std::string dataAddressOf(const std::string& png);

} // namespace krige

#endif
