#include "estimation/SystemInverse.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "estimation/CovarianceInverse.h"
#include "estimation/GlobalSystem.h"
#include "estimation/makeModelParts.h"
#include "estimation/makeSystemInverse.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/estimation/DenseKriging.h"
#include "tests/estimation/Samples.h"
#include "tests/support/BitComparison.h"
#include "tests/support/ThrownError.h"

namespace
{

using fenn::ModelParts;
using fenn::estimation::CovarianceInverse;
using fenn::estimation::EstimatorOptions;
using fenn::estimation::GlobalSystem;
using fenn::estimation::makeModelParts;
using fenn::estimation::makeSystemInverse;
using fenn::estimation::ModelSettings;
using fenn::estimation::SampleSet;
using fenn::estimation::SystemInverse;
using fenn::test::DenseKriging;
using fenn::test::DenseMatrix;
using fenn::test::sameBits;
using fenn::test::smoothSamples;

using Rows = std::vector<std::vector<double>>;

/// The points' part of the inverse of the plug-in's system, column by column.
Rows plainInverse(const ModelParts& parts, int driftOrder)
{
    const auto numPoints = parts.getPoints().size();
    KrigingMatrix system(parts.getDataBlock(), static_cast<int>(numPoints), &parts.getSemivariogram(), driftOrder);
    std::vector<double> scratch(parts.getNormalizers().size());
    system.assemble(parts.getPoints(), scratch);
    system.luDecompose();
    Rows inverse(numPoints, std::vector<double>(numPoints));
    for (std::size_t j = 0; j < numPoints; ++j)
    {
        std::vector<double> column(static_cast<std::size_t>(system.getDimension()), 0.0);
        column[j] = 1.0;
        system.luSolve(column.data());
        for (std::size_t i = 0; i < numPoints; ++i)
            inverse[i][j] = column[i];
    }
    return inverse;
}

double largestMagnitude(const Rows& rows)
{
    double largest = 0.0;
    for (const std::vector<double>& row : rows)
    {
        for (const double element : row)
            largest = std::max(largest, std::fabs(element));
    }
    return largest;
}

/// The drift terms' rows of that inverse, at the points.
Rows plainDriftRows(const ModelParts& parts, int driftOrder)
{
    const auto numPoints = parts.getPoints().size();
    KrigingMatrix system(parts.getDataBlock(), static_cast<int>(numPoints), &parts.getSemivariogram(), driftOrder);
    std::vector<double> scratch(parts.getNormalizers().size());
    system.assemble(parts.getPoints(), scratch);
    system.luDecompose();
    const auto dimension = static_cast<std::size_t>(system.getDimension());
    Rows rows(dimension - numPoints, std::vector<double>(numPoints));
    for (std::size_t j = 0; j < numPoints; ++j)
    {
        std::vector<double> column(dimension, 0.0);
        column[j] = 1.0;
        system.luSolve(column.data());
        for (std::size_t k = numPoints; k < dimension; ++k)
            rows[k - numPoints][j] = column[k];
    }
    return rows;
}

void expectDriftRows(const SystemInverse& inverse, const Rows& expected)
{
    const Rows rows = inverse.calcDriftRows();
    ASSERT_EQ(rows.size(), expected.size());
    for (std::size_t k = 0; k < rows.size(); ++k)
    {
        const double tolerance = 1e-10 * largestMagnitude(expected);
        ASSERT_EQ(rows[k].size(), expected[k].size());
        for (std::size_t i = 0; i < rows[k].size(); ++i)
            ASSERT_NEAR(rows[k][i], expected[k][i], tolerance) << "term " << k << ", point " << i;
    }
}

/// In groups of uneven sizes, every third point's first; their order within a group is a falling one.
std::vector<std::vector<std::size_t>> unevenGroups(std::size_t numPoints)
{
    std::vector<std::vector<std::size_t>> groups(numPoints > 2 ? 3 : 1);
    for (std::size_t p = numPoints; p-- > 0;)
        groups[p % 3 == 0 ? 0 : (p < numPoints / 4 ? groups.size() - 1 : groups.size() / 2)].push_back(p);
    return groups;
}

std::vector<Rows> blocksOf(const SystemInverse& inverse, const std::vector<std::vector<std::size_t>>& groups)
{
    std::vector<Rows> blocks(groups.size());
    inverse.calcBlocks(groups,
                       [&](std::size_t g, Matrix& block)
                       {
                           const int count = block.getDimension();
                           for (int i = 0; i < count; ++i)
                               blocks[g].emplace_back(block.getRow(i), block.getRow(i) + count);
                       });
    return blocks;
}

void expectInverse(const SystemInverse& inverse, const Rows& expected)
{
    const std::size_t numPoints = expected.size();
    const double tolerance = 1e-11 * largestMagnitude(expected); // a condition of some thousands
    ASSERT_EQ(inverse.getNumPoints(), numPoints);

    const std::vector<double> diagonal = inverse.calcDiagonal([](std::size_t) {});
    ASSERT_EQ(diagonal.size(), numPoints);
    for (std::size_t i = 0; i < numPoints; ++i)
        ASSERT_NEAR(diagonal[i], expected[i][i], tolerance) << "point " << i;

    const auto groups = unevenGroups(numPoints);
    const std::vector<Rows> blocks = blocksOf(inverse, groups);
    for (std::size_t g = 0; g < groups.size(); ++g)
    {
        ASSERT_EQ(blocks[g].size(), groups[g].size());
        for (std::size_t i = 0; i < groups[g].size(); ++i)
        {
            for (std::size_t j = 0; j < groups[g].size(); ++j)
                ASSERT_NEAR(blocks[g][i][j], expected[groups[g][i]][groups[g][j]], tolerance) << i << ", " << j;
        }
    }

    const std::vector<double> values = fenn::test::randomValues(1, numPoints, -1.0, 1.0, 3)[0];
    const std::vector<double> solution = inverse.solve(values);
    ASSERT_EQ(solution.size(), numPoints);
    for (std::size_t i = 0; i < numPoints; ++i)
        ASSERT_NEAR(solution[i], std::inner_product(values.begin(), values.end(), expected[i].begin(), 0.0),
                    100.0 * tolerance);
}

TEST(SystemInverseTest, BothFormsHoldTheInverseOfThePlugInsSystem)
{
    for (const std::size_t numSamples : {7U, 24U, 25U, 40U, 71U, 130U, 261U})
    {
        for (const int driftOrder : {0, 1, 2})
        {
            SCOPED_TRACE(testing::Message() << numSamples << " samples, drift " << driftOrder);
            const SampleSet samples = smoothSamples(numSamples, numSamples);
            const auto parts = makeModelParts(samples, {-1.0, {}, driftOrder, 0.8, 0.1, 0});
            const Rows expected = plainInverse(*parts, driftOrder);

            const auto covariance = CovarianceInverse::makeWhereAccurate(*parts, driftOrder, 2);
            ASSERT_NE(covariance, nullptr);
            expectInverse(*covariance, expected);
            expectInverse(GlobalSystem(*parts, driftOrder, 2), expected);
        }
    }
}

TEST(SystemInverseTest, DriftRowsAreThoseOfThePlugInsSystemInBothForms)
{
    for (const int driftOrder : {0, 1, 2, 4}) // up to 15 terms: more than a strip
    {
        SCOPED_TRACE(testing::Message() << "drift " << driftOrder);
        const SampleSet samples = smoothSamples(71, 5);
        const auto parts = makeModelParts(samples, {-1.0, {}, driftOrder, 0.8, 0.1, 0});
        const Rows expected = plainDriftRows(*parts, driftOrder);

        const auto covariance = CovarianceInverse::makeWhereAccurate(*parts, driftOrder, 2);
        ASSERT_NE(covariance, nullptr);
        expectDriftRows(*covariance, expected);
        expectDriftRows(GlobalSystem(*parts, driftOrder, 2), expected);
    }
}

TEST(SystemInverseTest, TheNumberOfThreadsChangesNoBit)
{
    const SampleSet samples = smoothSamples(300, 4);
    const auto parts = makeModelParts(samples, {});
    const auto groups = unevenGroups(300);
    for (const bool isExact : {false, true})
    {
        EstimatorOptions options;
        options.isExact = isExact;
        options.numThreads = 1;
        const auto once = makeSystemInverse(*parts, 1, options);
        options.numThreads = 3;
        const auto again = makeSystemInverse(*parts, 1, options);

        EXPECT_TRUE(sameBits(once->calcDiagonal([](std::size_t) {}), again->calcDiagonal([](std::size_t) {})));
        const std::vector<Rows> blocks = blocksOf(*once, groups);
        const std::vector<Rows> otherBlocks = blocksOf(*again, groups);
        for (std::size_t g = 0; g < groups.size(); ++g)
        {
            for (std::size_t i = 0; i < groups[g].size(); ++i)
                EXPECT_TRUE(sameBits(blocks[g][i], otherBlocks[g][i]));
        }
    }
}

TEST(SystemInverseTest, TheExactFormAnswersWhereItIsAskedForAndWhereTheOtherIsNotAccurate)
{
    const SampleSet smooth = smoothSamples(30, 4);
    std::vector<std::vector<double>> inputs = fenn::test::randomValues(2, 30, 0.0, 1.0, 4);
    for (std::vector<double>& column : inputs)
        column[1] = column[0] + 1e-12; // a pivot of some 1e-12
    const SampleSet nearlyCoincident(inputs, fenn::test::randomValues(1, 30, 0.0, 1.0, 5));
    std::size_t numAsked = 0;
    EstimatorOptions options;
    options.checkStandIn = [&](double bytes)
    {
        EXPECT_GE(bytes, 8.0 * 31 * 31);
        ++numAsked;
    };

    EXPECT_NE(dynamic_cast<const CovarianceInverse*>(makeSystemInverse(*makeModelParts(smooth, {}), 0, options).get()),
              nullptr);
    EXPECT_EQ(numAsked, 0U);
    const auto parts = makeModelParts(nearlyCoincident, {});
    EXPECT_NE(dynamic_cast<const GlobalSystem*>(makeSystemInverse(*parts, 0, options).get()), nullptr);
    EXPECT_EQ(numAsked, 1U);
    options.isExact = true;
    const auto smoothParts = makeModelParts(smooth, {});
    EXPECT_NE(dynamic_cast<const GlobalSystem*>(makeSystemInverse(*smoothParts, 0, options).get()), nullptr);
    EXPECT_EQ(numAsked, 1U);
}

TEST(SystemInverseTest, KnownElementsOfTheDiagonalAreTold)
{
    const SampleSet samples = smoothSamples(600, 4);
    const auto parts = makeModelParts(samples, {});
    EstimatorOptions options;
    options.numThreads = 1;
    const auto inverse = makeSystemInverse(*parts, 1, options);
    std::vector<std::size_t> told;

    inverse->calcDiagonal([&](std::size_t numDone) { told.push_back(numDone); });

    EXPECT_GE(told.size(), 2U);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_EQ(told.back(), 600U);
    EXPECT_THROW(inverse->calcDiagonal([](std::size_t) { throw std::runtime_error("stop"); }), std::runtime_error);
}

SampleSet samplesAt(std::vector<std::vector<double>> inputs)
{
    const std::size_t count = inputs[0].size();
    return {std::move(inputs), fenn::test::randomValues(1, count, 0.0, 1.0, 3)};
}

TEST(SystemInverseTest, LogDeterminantIsThatOfTheDenseSystemInBothForms)
{
    const SampleSet samples = smoothSamples(40, 5);
    for (const int driftOrder : {0, 1, 2, 3})
    {
        for (const double nugget : {0.0, 0.4})
        {
            SCOPED_TRACE(testing::Message() << "drift " << driftOrder << ", nugget " << nugget);
            const ModelSettings settings{-1.0, {1.0, 2.0}, driftOrder, 0.7, nugget, 0};
            const auto parts = makeModelParts(samples, settings);
            const auto expected = static_cast<double>(DenseKriging(*parts, settings).borderedSystem().logDeterminant());

            EXPECT_NEAR(GlobalSystem(*parts, driftOrder).calcLogDeterminant(), expected, 1e-9);
            const auto covarianceForm = CovarianceInverse::makeWhereAccurate(*parts, driftOrder, 1);
            ASSERT_NE(covarianceForm, nullptr);
            EXPECT_NEAR(covarianceForm->calcLogDeterminant(), expected, 1e-9);
        }
    }
}

TEST(SystemInverseTest, ReciprocalConditionIsNearThatOfTheDenseSystem)
{
    const SampleSet samples = smoothSamples(40, 6);
    for (const int driftOrder : {0, 2, 4})
    {
        for (const double nugget : {0.0, 0.4, 1.0})
        {
            SCOPED_TRACE(testing::Message() << "drift " << driftOrder << ", nugget " << nugget);
            const ModelSettings settings{-1.0, {}, driftOrder, 0.7, nugget, 0};
            const auto parts = makeModelParts(samples, settings);
            const DenseMatrix system = DenseKriging(*parts, settings).borderedSystem();
            const auto expected = static_cast<double>(1.0L / (system.norm() * system.inverse().norm()));

            const double actual = GlobalSystem(*parts, driftOrder).calcReciprocalCondition();

            EXPECT_GE(actual, expected * (1.0 - 1e-6)); // the norm of the inverse is estimated from below
            EXPECT_LE(actual, expected * 3.0);
        }
    }
}

TEST(SystemInverseTest, ReciprocalConditionOfTheCovarianceFormIsNearThatOfItsDenseSystem)
{
    const SampleSet samples = smoothSamples(40, 6);
    for (const int driftOrder : {0, 1, 2})
    {
        for (const double nugget : {0.0, 0.4})
        {
            SCOPED_TRACE(testing::Message() << "drift " << driftOrder << ", nugget " << nugget);
            const ModelSettings settings{-1.0, {}, driftOrder, 0.7, nugget, 0};
            const auto parts = makeModelParts(samples, settings);
            const DenseKriging dense(*parts, settings);
            const DenseMatrix c = dense.covariances();
            const DenseMatrix f = dense.drift();
            const std::size_t numPoints = c.getNumRows();
            DenseMatrix system(numPoints + f.getNumColumns(), numPoints + f.getNumColumns());
            for (std::size_t i = 0; i < numPoints; ++i)
            {
                for (std::size_t j = 0; j < numPoints; ++j)
                    system(i, j) = c(i, j);
                for (std::size_t k = 0; k < f.getNumColumns(); ++k)
                    system(i, numPoints + k) = system(numPoints + k, i) = f(i, k);
            }
            const auto expected = static_cast<double>(1.0L / (system.norm() * system.inverse().norm()));
            const auto inverse = CovarianceInverse::makeWhereAccurate(*parts, driftOrder, 1);
            ASSERT_NE(inverse, nullptr);

            const double actual = inverse->calcReciprocalCondition();

            EXPECT_GE(actual, expected * (1.0 - 1e-6));
            EXPECT_LE(actual, expected * 3.0);
            EXPECT_TRUE(inverse->isWellConditioned());
        }
    }
}

TEST(SystemInverseTest, ConditionFollowsTheDistanceOfTheNearestPair)
{
    for (const double distance : {1e-3, 1e-6, 1e-9})
    {
        const SampleSet samples = samplesAt({{0.0, 0.2, 0.2 + distance, 0.7, 1.0}});
        const double condition = GlobalSystem(*makeModelParts(samples, {}), 0).calcReciprocalCondition();

        EXPECT_GT(condition, distance / 10.0);
        EXPECT_LT(condition, distance * 10.0);
    }
}

TEST(SystemInverseTest, RepeatedPointsLeaveNoConditionUnlessThereIsANugget)
{
    const SampleSet samples = samplesAt({{0.0, 0.2, 0.2, 0.7, 1.0}});
    const auto parts = makeModelParts(samples, {});
    const auto partsWithNugget = makeModelParts(samples, {-1.0, {}, 0, 1.0, 0.1, 0});
    const GlobalSystem without(*parts, 0);
    const GlobalSystem withNugget(*partsWithNugget, 0);

    EXPECT_EQ(without.calcReciprocalCondition(), 0.0);
    EXPECT_FALSE(without.isWellConditioned());
    EXPECT_GT(withNugget.calcReciprocalCondition(), 1e-3);
    EXPECT_TRUE(withNugget.isWellConditioned());
}

TEST(SystemInverseTest, DriftProductsAreThoseOfTheDenseInverse)
{
    const SampleSet samples = smoothSamples(70, 23);
    for (const int driftOrder : {0, 1, 3})
    {
        const ModelSettings settings{-1.0, {}, driftOrder, 0.9, 0.1, 0};
        const auto parts = makeModelParts(samples, settings);
        const fenn::test::DenseKriging dense(*parts, settings);
        const fenn::test::DenseMatrix inverse = dense.borderedSystem().inverse();
        const fenn::test::DenseMatrix drift = dense.drift();
        const GlobalSystem exact(*parts, driftOrder, 2);
        const auto covarianceForm = CovarianceInverse::makeWhereAccurate(*parts, driftOrder, 2);
        ASSERT_NE(covarianceForm, nullptr);
        for (const SystemInverse* const form :
             {static_cast<const SystemInverse*>(&exact), static_cast<const SystemInverse*>(covarianceForm.get())})
        {
            std::vector<double> products;
            const std::vector<double> diagonal = form->calcDiagonal([](std::size_t) {}, &products);
            EXPECT_TRUE(sameBits(diagonal, form->calcDiagonal([](std::size_t) {})));
            ASSERT_EQ(products.size(), 70U);
            for (std::size_t i = 0; i < 70; ++i)
            {
                long double expected = 0.0L;
                for (std::size_t k = 0; k < drift.getNumColumns(); ++k)
                    expected += drift(i, k) * inverse(70 + k, i);
                EXPECT_NEAR(products[i], static_cast<double>(expected), 1e-10) << "point " << i;
            }
        }
    }
}

TEST(SystemInverseTest, SystemsThatCannotBeSolvedAreRefusedWhereAsked)
{
    std::vector<double> x;
    for (int i = 0; i < 12; ++i)
        x.push_back(i + 0.3 * (i % 3));
    const SampleSet onALine({x, x}, {x});
    x[11] = x[10];
    const SampleSet withARepeat({x}, {x});
    EstimatorOptions strict;
    strict.mustTellPointsApart = true;
    const auto errorFor = [](const SampleSet& samples, int driftOrder, const EstimatorOptions& options)
    {
        const auto parts = makeModelParts(samples, {-1.0, {}, driftOrder, 1.0, 0.0, 0});
        return fenn::test::textOfError([&] { makeSystemInverse(*parts, driftOrder, options); });
    };

    EXPECT_EQ(errorFor(onALine, 0, strict), "no Error");
    EXPECT_EQ(errorFor(onALine, 1, {}), "no Error");
    EXPECT_EQ(errorFor(onALine, 1, strict), "Ill-conditioned matrix");
    EXPECT_EQ(errorFor(withARepeat, 0, {}), "no Error");
    EXPECT_EQ(errorFor(withARepeat, 0, strict), "Ill-conditioned matrix");
}

} // namespace
