#ifndef FENN_HOST_PAGE_COLOURSCALE_H
#define FENN_HOST_PAGE_COLOURSCALE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace krige
{

/// Values as colours, in numColours steps of equal width from low to high; what is beyond takes the colours of the
/// ends.
///
/// The colours of values rise evenly in lightness (viridis, S. van der Walt and N. Smith, 2015), those of errors part
/// from a light middle to blue and to red (RdBu, C. Brewer): colour-blind readers tell them apart, and the first also
/// in grey.
class ColourScale
{
public:
    using Colour = std::array<std::uint8_t, 3>; // red, green, blue

    enum class Kind
    {
        Values,
        Errors // low is -high
    };

    static constexpr std::size_t numColours = 255; // and one of a palette of bytes for no value

    /// Finite limits; equal ones give the middle colour.
    ColourScale(Kind kind_, double low_, double high_);

    /// 0 to numColours - 1; numColours for NaN.
    std::size_t indexOf(double value) const;

    Colour colourAt(std::size_t index) const;

    double getLow() const
    {
        return low;
    }

    double getHigh() const
    {
        return high;
    }

private:
    Kind kind;
    double low;
    double high;
};

/// "#440154"
std::string hexOf(const ColourScale::Colour& colour);

/// From the least to the greatest finite value; 0 to 1 without one.
ColourScale scaleOverValues(const std::vector<double>& values);

/// As far as 98 in 100 of the finite errors reach, to either side.
ColourScale scaleOverErrors(const std::vector<double>& errors);

} // namespace krige

#endif
