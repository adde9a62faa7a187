// The bound that the covariance form proves, against the exact solution in MPFR arithmetic.

#include "tests/accuracy/CovarianceProof.h"

#include <cmath>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/Samples.h"

using namespace fenn::test;

namespace
{

/// How many proofs were held against the exact solution, and the worst of them.
struct Tally
{
    void add(const CovarianceProof& proof, const std::string& name)
    {
        if (!proof.refusal.empty())
        {
            ++numRefused;
            return;
        }
        ++numProven;
        EXPECT_LE(proof.bound, 1e-9) << name;
        EXPECT_LT(proof.worstRatio, 1.0) << name << ": off by " << proof.error << ", proven " << proof.bound;
        largestRatio = std::max(largestRatio, proof.worstRatio);
        largestError = std::max(largestError, proof.error);
        largestBound = std::max(largestBound, proof.bound);
    }

    void print(const char* what) const
    {
        std::printf("%s: %zu proven, %zu refused; error up to %.3g of a bound, %.3g standard deviations; bounds up to "
                    "%.3g\n",
                    what, numProven, numRefused, largestRatio, largestError, largestBound);
    }

    std::size_t numProven = 0;
    std::size_t numRefused = 0;
    double largestRatio = 0.0;
    double largestError = 0.0;
    double largestBound = 0.0;
};

/// Scattered points, outputs without any relation or smooth, targets in and around their box.
HardSystem scatteredSystem(std::size_t numInputVars, std::size_t numPts, int driftOrder, double nugget,
                           double rangeFraction, bool isSmooth, std::uint64_t seed)
{
    HardSystem system;
    system.inputs = randomValues(numInputVars, numPts, 0.0, 1.0, seed);
    RandomNumbers numbers(seed + 1);
    for (std::size_t i = 0; i < numPts; ++i)
        system.outputs.push_back(isSmooth ? std::sin(6.0 * system.inputs[0][i]) : numbers.next(-1.0, 1.0));
    system.settings.driftOrder = driftOrder;
    system.settings.nugget = nugget;
    system.settings.rangeFraction = rangeFraction;
    system.targets = randomValues(numInputVars, 6, -0.4, 1.4, seed + 2);
    for (std::size_t v = 0; v < numInputVars; ++v)
    {
        system.targets[v].push_back(system.inputs[v][3]);
        system.targets[v].push_back(v == 0 ? 25.0 : 0.5);
    }
    return system;
}

} // namespace

TEST(CovarianceProofTest, NoEstimateOfAHardSystemIsFartherOffThanProven)
{
    Tally tally;
    for (const HardSystem& system : makeHardSystems())
        tally.add(checkProof(system), system.family + ": " + system.name);
    tally.print("gallery");
    EXPECT_GT(tally.numProven, 20U);
    EXPECT_GT(tally.numRefused, 5U);
}

TEST(CovarianceProofTest, NoEstimateOfScatteredPointsIsFartherOffThanProven)
{
    Tally tally;
    std::uint64_t seed = 0;
    for (std::size_t numInputVars = 1; numInputVars <= 4; ++numInputVars)
    {
        for (int driftOrder = 0; driftOrder <= 3; ++driftOrder)
        {
            for (const double nugget : {0.0, 0.1})
            {
                for (const double rangeFraction : {0.2, 1.0, 30.0})
                {
                    ++seed;
                    tally.add(checkProof(scatteredSystem(numInputVars, 40 + seed % 23, driftOrder, nugget,
                                                         rangeFraction, seed % 2 == 0, seed)),
                              std::to_string(numInputVars) + " inputs, drift " + std::to_string(driftOrder) +
                                  ", nugget " + std::to_string(nugget) + ", range " + std::to_string(rangeFraction));
                }
            }
        }
    }
    tally.print("scattered points");
    EXPECT_EQ(tally.numRefused, 0U);
}
