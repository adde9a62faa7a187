#include "host/page/RasterImage.h"

#include <cstdint>

#include <png.h>

#include "host/page/GridCode.h"
#include "host/text/HostErrors.h"

namespace krige
{

std::string pngOf(const std::vector<double>& values, std::size_t numColumns, const ColourScale& colours)
{
    const std::size_t numRows = values.size() / numColumns;
    std::vector<std::uint8_t> pixels;
    pixels.reserve(values.size());
    for (std::size_t row = numRows; row-- > 0;)
    {
        for (std::size_t column = 0; column < numColumns; ++column)
            pixels.push_back(static_cast<std::uint8_t>(colours.indexOf(values[row * numColumns + column])));
    }
    std::vector<std::uint8_t> palette;
    for (std::size_t i = 0; i < ColourScale::numColours; ++i)
    {
        const ColourScale::Colour colour = colours.colourAt(i);
        palette.insert(palette.end(), {colour[0], colour[1], colour[2], 255});
    }
    palette.insert(palette.end(), {0, 0, 0, 0}); // no value

    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(numColumns);
    image.height = static_cast<png_uint_32>(numRows);
    image.format = PNG_FORMAT_RGBA_COLORMAP;
    image.colormap_entries = ColourScale::numColours + 1;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string png(size, '\0');
    if (png_image_write_to_memory(&image, png.data(), &size, 0, pixels.data(), static_cast<png_int_32>(numColumns),
                                  palette.data()) == 0)
        throw InputError("a map cannot be packed: " + std::string(image.message));
    png.resize(size);
    return png;
}

std::string dataAddressOf(const std::string& png)
{
    return "data:image/png;base64," + base64Of(png);
}

} // namespace krige
