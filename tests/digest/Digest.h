#ifndef FENN_TESTS_DIGEST_DIGEST_H
#define FENN_TESTS_DIGEST_DIGEST_H

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace fenn::test
{

/// FNV-1a, 64 bits, over the bits of numbers, lowest byte first. All NaNs count as one: a compiler may swap the
/// operands that decide which NaN comes out.
class Digest
{
public:
    void add(std::uint64_t value)
    {
        for (int shift = 0; shift < 64; shift += 8)
        {
            hash ^= (value >> shift) & 0xffU;
            hash *= 0x100000001b3U;
        }
    }

    void add(int value)
    {
        add(static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
    }

    void add(double value)
    {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        add(std::isnan(value) ? std::uint64_t{0x7ff8000000000000U} : bits);
    }

    void add(const double* values, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
            add(values[i]);
    }

    void add(const std::vector<double>& values)
    {
        add(values.data(), values.size());
    }

    void add(const std::string& text)
    {
        for (const char character : text)
            add(static_cast<int>(character));
    }

    std::uint64_t value() const
    {
        return hash;
    }

private:
    std::uint64_t hash = 0xcbf29ce484222325U;
};

} // namespace fenn::test

#endif
