#ifndef FENN_FUZZ_INPUTBYTES_H
#define FENN_FUZZ_INPUTBYTES_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/Samples.h"

namespace fenn::fuzz
{

/// Ends the process, which is how libFuzzer learns that an input shows a fault.
[[noreturn]] inline void fail(const std::string& what)
{
    std::fprintf(stderr, "FAULT: %s\n", what.c_str());
    std::abort();
}

inline void check(bool holds, const std::string& what)
{
    if (!holds)
        fail(what);
}

/// Numbers out of libFuzzer's bytes, from front to back, so that one changed byte changes one number. Zero once the
/// bytes are used up.
class InputBytes
{
public:
    InputBytes(const std::uint8_t* data_, std::size_t size_) : data(data_), size(size_) {}

    std::size_t byte()
    {
        return position < size ? data[position++] : 0;
    }

    /// Below count, which is at least 1 and at most 256.
    std::size_t pick(std::size_t count)
    {
        return byte() % count;
    }

    template <typename T>
    T rawBits()
    {
        T value = T();
        const std::size_t numBytes = sizeof value < size - position ? sizeof value : size - position;
        if (numBytes > 0)
            std::memcpy(&value, data + position, numBytes);
        position += numBytes;
        return value;
    }

    /// One of the doubles at which something in the library changes, or at the ends of what doubles can hold.
    double specialValue()
    {
        using Limits = std::numeric_limits<double>;
        static const double values[] = {Limits::quiet_NaN(),
                                        Limits::infinity(),
                                        -Limits::infinity(),
                                        -0.0,
                                        Limits::denorm_min(),
                                        Limits::min(),
                                        Limits::max(),
                                        -Limits::max(),
                                        1e-150,
                                        1e150,
                                        -1e150,
                                        1e-151,
                                        0x1p-200,
                                        0x1p200,
                                        1e12,
                                        -1.0 / 3.0};
        return values[pick(sizeof values / sizeof values[0])];
    }

    /// Mostly on a grid of eighths in [-4, 4), where differences tie; or one of the earlier ones, or next to it; or any
    /// finite double from 2^-20 to 2^20; or, unless they are to be plain, a special one or any bits.
    double coordinate(const std::vector<double>& earlier, bool isPlain)
    {
        const std::size_t kind = byte();
        if (kind < 128)
            return static_cast<double>(static_cast<int>(kind) - 64) * 0.0625;
        if (kind < 176 && !earlier.empty())
            return earlier[pick(earlier.size() < 256 ? earlier.size() : 256)];
        if (kind < 192 && !earlier.empty())
            return std::nextafter(earlier.back(), kind % 2 == 0 ? -1e300 : 1e300);
        if (kind < 224 || isPlain)
            return std::ldexp(static_cast<double>(rawBits<std::int32_t>()), static_cast<int>(kind % 21) - 40);
        return kind < 244 ? specialValue() : rawBits<double>();
    }

    /// One of the listed ones, then and again a special one or any bits.
    double oneOf(const std::vector<double>& usual)
    {
        const std::size_t kind = byte();
        if (kind < 232)
            return usual[kind % usual.size()];
        return kind < 248 ? specialValue() : rawBits<double>();
    }

    /// Seeded by two bytes: for what is too much to be spelt out.
    test::RandomNumbers randomNumbers()
    {
        return test::RandomNumbers(rawBits<std::uint16_t>());
    }

private:
    const std::uint8_t* data;
    std::size_t size;
    std::size_t position = 0;
};

/// One list per variable. Few points are spelt out, coincident ones among them; many come from a seed, on a grid fine
/// enough for most of them to differ.
inline std::vector<std::vector<double>> decodePoints(InputBytes& input, std::size_t numVars, std::size_t numPts,
                                                     bool isPlain)
{
    constexpr std::size_t mostSpeltOut = 24;
    std::vector<std::vector<double>> values(numVars);
    for (std::vector<double>& variable : values)
        variable.reserve(numPts); // exactly: what is read beyond is seen
    if (numPts > mostSpeltOut)
    {
        const std::size_t gridSize = 2 + input.byte();
        test::RandomNumbers numbers = input.randomNumbers();
        for (std::size_t i = 0; i < numPts; ++i)
        {
            for (std::vector<double>& variable : values)
            {
                const double step = std::floor(numbers.next(0.0, static_cast<double>(gridSize)));
                variable.push_back(gridSize > 240 ? numbers.next(-1.0, 1.0) : step * 0.125);
            }
        }
        // A few of them may be anything.
        for (std::size_t special = isPlain || numVars == 0 ? 0 : input.pick(4); special > 0; --special)
            values[input.pick(numVars)][input.pick(numPts < 256 ? numPts : 256)] = input.specialValue();
        return values;
    }
    for (std::size_t i = 0; i < numPts; ++i)
    {
        const std::size_t twin = input.byte(); // an earlier point here once more
        for (std::vector<double>& variable : values)
        {
            variable.push_back(twin >= 208 && i > 0 ? variable[twin % i] : input.coordinate(variable, isPlain));
        }
    }
    return values;
}

} // namespace fenn::fuzz

#endif
