#include "estimation/CovarianceSystem.h"

#include <gtest/gtest.h>

#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/estimation/DenseKriging.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::estimation::CovarianceSystem;
using fenn::estimation::makeModelParts;
using fenn::estimation::ModelSettings;
using fenn::test::DenseKriging;
using fenn::test::DenseMatrix;

/// | C  F/s |
/// | F^T/s 0 |, the constant first.
DenseMatrix scaledSystem(const DenseMatrix& covariances, const DenseMatrix& drift, double scale)
{
    const std::size_t numPoints = covariances.getNumRows();
    const std::size_t size = numPoints + drift.getNumColumns();
    DenseMatrix system(size, size);
    for (std::size_t i = 0; i < numPoints; ++i)
    {
        for (std::size_t j = 0; j < numPoints; ++j)
            system(i, j) = covariances(i, j);
        for (std::size_t k = 0; k < drift.getNumColumns(); ++k)
            system(i, numPoints + k) = system(numPoints + k, i) = drift(i, k) / scale;
    }
    return system;
}

TEST(CovarianceSystemTest, NormIsThatOfTheScaledDenseSystem)
{
    for (const std::size_t numPoints : {9U, 40U, 65U})
    {
        const auto samples = fenn::test::smoothSamples(numPoints, 6);
        for (const int driftOrder : {0, 1, 2})
        {
            for (const double scale : {1.0, 30.0})
            {
                SCOPED_TRACE(testing::Message() << numPoints << " points, drift " << driftOrder << ", scale " << scale);
                const ModelSettings settings{-1.0, {}, driftOrder, 0.7, 0.4, 0};
                const auto parts = makeModelParts(samples, settings);
                const CovarianceSystem system(*parts, driftOrder);
                const DenseKriging dense(*parts, settings);

                const double norm = system.calcNorm(std::vector<double>(system.getNumDriftTerms(), scale));

                EXPECT_NEAR(norm / static_cast<double>(scaledSystem(dense.covariances(), dense.drift(), scale).norm()),
                            1.0, 1e-13);
            }
        }
    }
}

TEST(CovarianceSystemTest, RowScalesStandAtTheRowsThatBelong)
{
    const auto samples = fenn::test::smoothSamples(30, 6);
    const auto parts = makeModelParts(samples, {});
    const CovarianceSystem system(*parts, 1);

    const std::vector<double> scales = system.getRowScales({2.0, 3.0, 5.0});

    ASSERT_EQ(scales.size(), system.getNumRows());
    for (std::size_t i = 0; i < scales.size(); ++i)
    {
        const std::size_t drift = system.getFirstDriftRow();
        const double expected = i < 30 ? 1.0 : i == drift ? 2.0 : i == drift + 1 ? 3.0 : i == drift + 2 ? 5.0 : 0.0;
        EXPECT_EQ(scales[i], expected) << i;
    }
}

} // namespace
