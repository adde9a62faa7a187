// A host outside the project that prints a digest over the bits of what the plug-in answers, through its public headers
// alone: global and local models, with and without merging, drift and nugget. It uses + - * / and integers only, so
// every processor, compiler and set of flags must print the same.

#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <set>
#include <vector>

#include "surrogatemodel_kriging/KrigingSurrogateModel.h"

namespace
{

/// FNV-1a over the bytes of doubles, least significant first.
class Digest
{
public:
    void add(double value)
    {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        for (int byte = 0; byte < 8; ++byte)
        {
            state ^= (bits >> (8 * byte)) & 0xff;
            state *= 0x100000001b3;
        }
    }

    std::uint64_t value() const
    {
        return state;
    }

private:
    std::uint64_t state = 0xcbf29ce484222325;
};

/// Uniform in [0, 1), by a linear congruential generator (Knuth, MMIX).
std::vector<double> makeValues(std::size_t count, std::uint64_t seed)
{
    std::vector<double> values(count);
    for (double& value : values)
    {
        seed = seed * 6364136223846793005U + 1442695040888963407U;
        value = static_cast<double>(seed >> 11) * 0x1p-53;
    }
    return values;
}

struct Settings
{
    const char* name;
    int numSamples;
    double duplicateTolerance;
    int driftOrder;
    double rangeFraction;
    double nugget;
    int numNearestPoints;
};

std::uint64_t digestOf(const Settings& settings, std::size_t numTargets)
{
    const auto count = static_cast<std::size_t>(settings.numSamples);
    std::vector<double> x = makeValues(count, 1), y = makeValues(count, 2), z = makeValues(count, 3);
    std::vector<double> sum(count), product(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        sum[i] = x[i] + y[i] * z[i];
        product[i] = x[i] * y[i] - z[i];
    }
    KrigingSurrogateModel model({x.data(), y.data(), z.data()}, {sum.data(), product.data()}, settings.numSamples,
                                settings.duplicateTolerance, {}, settings.driftOrder, settings.rangeFraction,
                                settings.nugget, settings.numNearestPoints);
    const std::set<int> outputs{0, 1};
    model.activateDependentVariables(outputs);

    std::vector<double> targetX = makeValues(numTargets, 4), targetY = makeValues(numTargets, 5),
                        targetZ = makeValues(numTargets, 6);
    std::vector<double> first(numTargets), second(numTargets);
    std::vector<double*> results{first.data(), second.data()};
    model.interpolateDependentValues({targetX.data(), targetY.data(), targetZ.data()}, outputs, results, numTargets);

    Digest digest;
    for (std::size_t t = 0; t < numTargets; ++t)
    {
        digest.add(first[t]);
        digest.add(second[t]);
    }
    return digest.value();
}

} // namespace

int main()
{
    for (const Settings& settings : {
             Settings{"global", 300, -1.0, 0, 1.0, 0.0, 0},
             Settings{"global, merged, drift and nugget", 257, 0.02, 2, 0.7, 0.1, 0},
             Settings{"local", 400, -1.0, 0, 1.0, 0.05, 24},
             Settings{"local, drift", 400, 0.01, 1, 0.5, 0.0, 33},
         })
        for (const std::size_t numTargets : {std::size_t(1), std::size_t(700)})
            std::printf("%s, targets %zu: %016" PRIx64 "\n", settings.name, numTargets, digestOf(settings, numTargets));
    return 0;
}
