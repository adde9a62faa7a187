#include "host/page/RasterImage.h"

#include <cstdint>
#include <limits>

#include <gmock/gmock.h>
#include <png.h>

using krige::ColourScale;
using testing::StartsWith;

namespace
{

struct Pixels
{
    unsigned width = 0;
    unsigned height = 0;
    std::vector<std::uint8_t> rgba;
};

Pixels pixelsOf(const std::string& png)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_memory(&image, png.data(), png.size()), 0) << image.message;
    image.format = PNG_FORMAT_RGBA;
    Pixels pixels{image.width, image.height, std::vector<std::uint8_t>(PNG_IMAGE_SIZE(image))};
    EXPECT_NE(png_image_finish_read(&image, nullptr, pixels.rgba.data(), 0, nullptr), 0) << image.message;
    return pixels;
}

} // namespace

TEST(RasterImageTest, RowsRunUpwards)
{
    const ColourScale colours(ColourScale::Kind::Values, 0.0, 1.0);
    // Two rows of three: the lower one comes first.
    const Pixels pixels =
        pixelsOf(krige::pngOf({0.0, 0.0, 1.0, 1.0, std::numeric_limits<double>::quiet_NaN(), 1.0}, 3, colours));

    EXPECT_EQ(pixels.width, 3u);
    EXPECT_EQ(pixels.height, 2u);
    const std::vector<std::uint8_t> expected{253, 231, 37, 255, 0,  0, 0,  0,   253, 231, 37, 255,
                                             68,  1,   84, 255, 68, 1, 84, 255, 253, 231, 37, 255};
    EXPECT_EQ(pixels.rgba, expected);
}

TEST(RasterImageTest, AnAddressHoldsThePicture)
{
    EXPECT_THAT(krige::dataAddressOf(krige::pngOf({1.0}, 1, krige::scaleOverValues({1.0}))),
                StartsWith("data:image/png;base64,iVBORw0KGgo"));
}
