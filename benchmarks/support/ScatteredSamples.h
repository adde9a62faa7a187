#ifndef FENN_BENCHMARKS_SUPPORT_SCATTEREDSAMPLES_H
#define FENN_BENCHMARKS_SUPPORT_SCATTEREDSAMPLES_H

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <random>
#include <vector>

#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::benchmarks
{

/// Samples and targets at random in the unit cube, one output, a data block over them.
class ScatteredSamples
{
public:
    ScatteredSamples(std::size_t numVars, std::size_t numPts, std::size_t numTargets_, bool isSorted = false)
        : inputs(numVars, std::vector<double>(numPts)),
          output(numPts),
          targets(numVars, std::vector<double>(numTargets_)),
          numTargets(numTargets_),
          normalizers(numVars),
          low(numVars, 0.0),
          high(numVars, 1.0)
    {
        std::mt19937_64 engine(numPts);
        const auto fill = [&](std::vector<double>& values)
        {
            for (double& value : values)
                value = static_cast<double>(engine() >> 11) * 0x1p-53;
        };
        std::for_each(inputs.begin(), inputs.end(), fill);
        std::for_each(targets.begin(), targets.end(), fill);
        fill(output);
        if (isSorted)
            std::sort(inputs[0].begin(), inputs[0].end());
        rebuildBlock();
    }

    /// A fresh data block: merging duplicates changes the one there is.
    void rebuildBlock()
    {
        block = std::make_unique<SurrogateModelDataBlock>(
            static_cast<int>(output.size()), pointersTo(inputs), std::vector<double*>{output.data()},
            std::vector<bool>(output.size(), true), normalizers, low, high);
    }

    static std::vector<double*> pointersTo(std::vector<std::vector<double>>& arrays)
    {
        std::vector<double*> pointers;
        for (std::vector<double>& array : arrays)
            pointers.push_back(array.data());
        return pointers;
    }

    std::vector<double> target(std::size_t t) const
    {
        std::vector<double> coords;
        for (const std::vector<double>& variable : targets)
            coords.push_back(variable[t]);
        return coords;
    }

    std::vector<std::vector<double>> inputs;
    std::vector<double> output;
    std::vector<std::vector<double>> targets;
    std::size_t numTargets;
    std::vector<Normalizer> normalizers;
    std::vector<double> low;
    std::vector<double> high;
    std::unique_ptr<SurrogateModelDataBlock> block;
};

/// Seconds that run takes, the least and the median of several repeats.
struct RunTime
{
    template <typename Run>
    RunTime(int numRepeats, const Run& run)
    {
        std::vector<double> seconds;
        for (int r = 0; r < numRepeats; ++r)
        {
            const auto start = std::chrono::steady_clock::now();
            run();
            seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        }
        std::sort(seconds.begin(), seconds.end());
        best = seconds.front();
        median = seconds[seconds.size() / 2];
    }

    double best = 0.0;
    double median = 0.0;
};

} // namespace fenn::benchmarks

#endif
