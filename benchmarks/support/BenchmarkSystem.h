#ifndef FENN_BENCHMARKS_SUPPORT_BENCHMARKSYSTEM_H
#define FENN_BENCHMARKS_SUPPORT_BENCHMARKSYSTEM_H

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <random>
#include <set>
#include <vector>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::benchmarks
{

inline double wallSeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Shortest time of repeated calls, in seconds of the given clock; prepare is called before each one and not timed.
template <class Prepare, class Operation>
double bestTime(int numRepeats, const Prepare& prepare, const Operation& operation, double (*now)() = wallSeconds)
{
    double best = 1e30;
    for (int r = 0; r < numRepeats; ++r)
    {
        prepare();
        const double begin = now();
        operation();
        best = std::min(best, now() - begin);
    }
    return best;
}

/// Value arrays, uniform in [0, 1) from a fixed seed, with the pointers that the interfaces take.
struct Columns
{
    Columns(std::size_t numVars, std::size_t numPts, std::uint64_t seed) : values(numVars, std::vector<double>(numPts))
    {
        std::mt19937_64 engine(seed);
        for (std::vector<double>& variable : values)
        {
            for (double& value : variable)
                value = static_cast<double>(engine() >> 11) * 0x1p-53;
            arrays.push_back(variable.data());
        }
    }

    std::vector<std::vector<double>> values;
    std::vector<double*> arrays;
};

/// Random samples in the unit cube with all that a Kriging system over them refers to.
struct BenchmarkSystem
{
    BenchmarkSystem(int numPts, std::size_t numInputVars, std::size_t numOutputVars, int driftOrder)
        : inputs(numInputVars, static_cast<std::size_t>(numPts), 1),
          outputs(numOutputVars, static_cast<std::size_t>(numPts), 2),
          normalizers(numInputVars),
          low(numInputVars, 0.0),
          high(numInputVars, 1.0),
          dataBlock(numPts, inputs.arrays, outputs.arrays, std::vector<bool>(static_cast<std::size_t>(numPts), true),
                    normalizers, low, high),
          semivariogram(low, normalizers, low, high, 1.0, 0.01),
          matrix(dataBlock, numPts, &semivariogram, driftOrder)
    {
        dataBlock.getAllUnblankedPts(points);
        for (std::size_t o = 0; o < numOutputVars; ++o)
            outputVars.insert(static_cast<int>(o));
    }

    void assemble()
    {
        std::vector<double> scratch(normalizers.size());
        matrix.assemble(points, scratch);
    }

    Columns inputs;
    Columns outputs;
    std::vector<Normalizer> normalizers;
    std::vector<double> low;
    std::vector<double> high;
    SurrogateModelDataBlock dataBlock;
    SphericalSemivariogram semivariogram;
    KrigingMatrix matrix;
    std::vector<SourcePointRef> points;
    std::set<int> outputVars;
};

} // namespace fenn::benchmarks

#endif
