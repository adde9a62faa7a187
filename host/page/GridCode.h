#ifndef FENN_HOST_PAGE_GRIDCODE_H
#define FENN_HOST_PAGE_GRIDCODE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace krige
{

/// The values of a grid as a page keeps them for the script that shows the one under the pointer: rounded to a power of
/// ten, such that there are 6554 to 65534 steps from the least to the greatest, or fewer where doubles have no more
/// digits. What is shown are the value's own digits, rounded once.
///
/// packed: base64 of zlib's deflate of one 16-bit code per node, rows from the first to the last. Code 0 stands for no
/// value, any other for (base + code - 1) 10^exponent. The codes are differences modulo 2^16: each row's of its left
/// neighbour, 0 before the first, and these of the row before; of all nodes the low bytes, then the high bytes. A
/// smooth surface makes differences near 0, which pack well: the script adds them up again.
struct GridCode
{
    int exponent = 0;
    std::int64_t base = 0;
    std::string packed;
};

/// values: row by row, numColumns each; infinities and NaN have no value.
GridCode encodeGrid(const std::vector<double>& values, std::size_t numColumns);

std::string base64Of(std::string_view bytes);

} // namespace krige

#endif
