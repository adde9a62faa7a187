// A process in which the library's first use is by eight threads at once: the choice of an instruction set for every
// kernel and the constant that is computed once must then happen exactly as on one thread. Prints what is wrong and
// exits with 1, or exits with 0. Run it under the thread sanitizer too.

#include <cstdio>
#include <set>
#include <vector>

#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "tests/reliability/StartingGate.h"
#include "tests/support/BitComparison.h"
#include "tests/support/Samples.h"

using namespace fenn::test;

namespace
{

using Lists = std::vector<std::vector<double>>;

constexpr std::size_t numHostThreads = 8;

/// Estimates of a model over so many points; 0 nearest points for a global one.
std::vector<double> estimates(std::size_t numPts, int numNearestPoints)
{
    constexpr std::size_t numTargets = 45;
    ValueArrays inputs(randomValues(2, numPts, 0.0, 1.0, 81));
    ValueArrays outputs(randomValues(1, numPts, -5.0, 5.0, 82));
    ValueArrays targets(randomValues(2, numTargets, 0.0, 1.0, 83));
    ValueArrays results(1, numTargets);
    const KrigingSurrogateModel model(inputs.arrays(), outputs.arrays(), static_cast<int>(numPts), -1.0, {}, 1, 1.0,
                                      0.01, numNearestPoints);
    model.interpolateDependentValues(targets.arrays(), {0}, results.arrays(), numTargets);
    return results[0];
}

/// Local models first, then global ones: these order their threads by handing targets to pools, those by nothing. Each
/// thread begins with another one, and so with other kernels.
Lists estimatesOfThread(std::size_t thread)
{
    Lists result(4);
    for (std::size_t i = 0; i < 2; ++i)
    {
        const std::size_t local = (thread + i) % 2;
        result[local] = local == 0 ? estimates(60, 12) : estimates(90, 60);
    }
    for (std::size_t i = 0; i < 2; ++i)
    {
        const std::size_t global = (thread / 2 + i) % 2;
        result[2 + global] = global == 0 ? estimates(30, 0) : estimates(280, 0);
    }
    return result;
}

bool areSame(const Lists& a, const Lists& b)
{
    bool result = a.size() == b.size();
    for (std::size_t k = 0; result && k < a.size(); ++k)
    {
        result = a[k].size() == b[k].size();
        for (std::size_t t = 0; result && t < a[k].size(); ++t)
            result = sameBits(a[k][t], b[k][t]);
    }
    return result;
}

} // namespace

int main()
{
    std::vector<Lists> ofThreads(numHostThreads);
    runOnHostThreads(numHostThreads, [&](std::size_t t) { ofThreads[t] = estimatesOfThread(t); });

    const Lists expected = estimatesOfThread(0);
    int numWrong = 0;
    for (std::size_t t = 0; t < numHostThreads; ++t)
    {
        if (areSame(ofThreads[t], expected))
            continue;
        std::printf("thread %zu has other estimates\n", t);
        ++numWrong;
    }
    return numWrong == 0 ? 0 : 1;
}
