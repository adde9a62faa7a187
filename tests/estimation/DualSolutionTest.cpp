#include "estimation/DualSolution.h"

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "estimation/CovarianceSystem.h"
#include "estimation/ParallelRanges.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/estimation/Samples.h"
#include "tests/support/DenseMatrix.h"

namespace
{

using fenn::estimation::CovarianceSystem;
using fenn::estimation::DualSolution;
using fenn::estimation::makeModelParts;
using fenn::estimation::ModelSettings;
using fenn::estimation::ParallelRanges;
using fenn::estimation::SampleSet;
using fenn::test::DenseMatrix;

/// Largest difference of the weights from those of the plug-in's system, which is solved in long double, over the
/// largest weight.
double relativeErrorOfWeights(const SampleSet& samples, const ModelSettings& settings)
{
    const auto parts = makeModelParts(samples, settings);
    ParallelRanges threads(1);
    CovarianceSystem system(*parts, settings.driftOrder);
    EXPECT_TRUE(system.factorise(threads));
    const DualSolution solution(system, *parts, threads, std::vector<double>(system.getNumDriftTerms(), 1.0), 0.0);

    KrigingMatrix rounded(parts->getDataBlock(), static_cast<int>(samples.getNumSamples()), &parts->getSemivariogram(),
                          settings.driftOrder);
    std::vector<double> scratch(samples.getNumInputVars());
    rounded.assemble(parts->getPoints(), scratch);
    const auto dimension = static_cast<std::size_t>(rounded.getDimension());
    DenseMatrix gamma(dimension, dimension);
    for (std::size_t i = 0; i < dimension; ++i)
    {
        for (std::size_t j = 0; j < dimension; ++j)
            gamma(i, j) = rounded.getRow(static_cast<int>(i))[j];
    }
    DenseMatrix z(dimension, 1);
    for (std::size_t i = 0; i < samples.getNumSamples(); ++i)
        z(i, 0) = -static_cast<long double>(samples.getOutput(0)[i]) + solution.getReference(0);
    const DenseMatrix expected = gamma.solve(z);
    double largest = 0.0;
    double worst = 0.0;
    for (std::size_t row = 0; row < samples.getNumSamples(); ++row)
    {
        const auto weight = static_cast<double>(expected(system.getPositions()[row], 0));
        largest = std::max(largest, std::fabs(weight));
        worst = std::max(worst, std::fabs(solution.getWeights().values[row] - weight));
    }
    return worst / largest;
}

TEST(DualSolutionTest, CorrectionsTakeTheConditionOutOfTheWeights)
{
    // The condition is about 1e6: a single solve is off by 1e-12 to 1e-10.
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(1, 60, 0.0, 1.0, 3);
    for (std::size_t i = 0; i < 20; ++i)
        inputs[0][40 + i] = inputs[0][i] + 2e-5;
    const SampleSet samples(inputs, fenn::test::randomValues(1, 60, 0.0, 1.0, 4));

    EXPECT_LT(relativeErrorOfWeights(samples, {}), 3e-15);
    EXPECT_LT(relativeErrorOfWeights(samples, {-1.0, {}, 1, 0.5, 0.0, 0}), 3e-15);
}

} // namespace
