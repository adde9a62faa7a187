#ifndef FENN_TESTS_SUPPORT_SAMPLES_H
#define FENN_TESTS_SUPPORT_SAMPLES_H

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace fenn::test
{

/// Uniform doubles in [0, 1) from a fixed seed. Made from the engine's bits: the standard distributions differ from one
/// standard library to the next.
class RandomNumbers
{
public:
    explicit RandomNumbers(std::uint64_t seed) : engine(seed) {}

    double next()
    {
        return static_cast<double>(engine() >> 11) * 0x1p-53;
    }

    double next(double low, double high)
    {
        return low + (high - low) * next();
    }

private:
    std::mt19937_64 engine;
};

/// Value arrays in the layout of the interface, one per variable, that own their values.
class ValueArrays
{
public:
    explicit ValueArrays(std::vector<std::vector<double>> values_) : values(std::move(values_))
    {
        for (std::vector<double>& variable : values)
            pointers.push_back(variable.data());
    }

    ValueArrays(std::size_t numVars, std::size_t numPts)
        : ValueArrays(std::vector<std::vector<double>>(numVars, std::vector<double>(numPts)))
    {
    }

    ValueArrays(const ValueArrays& other) = delete;
    ValueArrays& operator=(const ValueArrays& other) = delete;

    std::vector<double>& operator[](std::size_t variable)
    {
        return values[variable];
    }

    const std::vector<double>& operator[](std::size_t variable) const
    {
        return values[variable];
    }

    std::size_t getNumVars() const
    {
        return values.size();
    }

    /// One pointer per variable.
    std::vector<double*>& arrays()
    {
        return pointers;
    }

private:
    std::vector<std::vector<double>> values;
    std::vector<double*> pointers;
};

/// Every variable uniform in [low, high).
inline std::vector<std::vector<double>> randomValues(std::size_t numVars, std::size_t numPts, double low, double high,
                                                     std::uint64_t seed)
{
    RandomNumbers numbers(seed);
    std::vector<std::vector<double>> values(numVars, std::vector<double>(numPts));
    for (std::vector<double>& variable : values)
    {
        for (double& value : variable)
            value = numbers.next(low, high);
    }
    return values;
}

} // namespace fenn::test

#endif
