// What the factorisation's workspace held before is neither computed with nor kept where rows and columns are filled up
// to whole strips. Denormal leftovers there cost up to ten times the factorisation's time on some processors.

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/ElementStore.h"
#include "surrogatemodel_kriging/kernels/LuKernels.h"
#include "surrogatemodel_kriging/kernels/LuPlan.h"
#include "tests/support/BitComparison.h"
#include "tests/support/FloatingPointFlags.h"
#include "tests/support/RunnableTargets.h"
#include "tests/support/Samples.h"

namespace
{

using fenn::ElementStore;
using fenn::kernels::LuPlan;
using fenn::test::FloatingPointFlags;
using fenn::test::forEachRunnableTarget;
using fenn::test::RandomNumbers;
using fenn::test::sameBits;
using fenn::test::tracedValues;

class Factorisation
{
public:
    Factorisation(std::size_t n_, std::size_t numPieces_)
        : n(n_), numPieces(numPieces_), elements(n_ * n_), rows(n_), pivots(n_)
    {
        workspace.allocate(workspaceSize());
    }

    /// Random rows, and the given value all over the workspace.
    void fill(double leftover)
    {
        RandomNumbers numbers(n);
        for (double& element : elements)
            element = numbers.next(-1.0, 1.0);
        for (std::size_t i = 0; i < n; ++i)
            rows[i] = elements.data() + i * n;
        std::fill_n(workspace.data(), workspaceSize(), leftover);
    }

    void run()
    {
        fenn::kernels::SharedLu shared;
        fenn::kernels::prepareSharedLu(shared, rows.data(), n, pivots.data(), workspace.data(), numPieces);
        fenn::kernels::workOnSharedLu(shared);
    }

    std::size_t workspaceSize() const
    {
        return fenn::kernels::luWorkspaceSize(n, numPieces);
    }

    const std::size_t n;
    const std::size_t numPieces;
    std::vector<double> elements;
    std::vector<double*> rows;
    std::vector<int> pivots;
    ElementStore workspace;
};

std::vector<std::size_t> sizesOfEveryPath()
{
    std::vector<std::size_t> sizes;
    for (std::size_t n = 1; n <= 120; ++n)
        sizes.push_back(n);
    for (const std::size_t n : {129U, 150U, 257U, 300U})
        sizes.push_back(n);
    return sizes;
}

template <class Check>
void forEveryPath(const Check& check)
{
    forEachRunnableTarget(
        [&](const char* name)
        {
            for (const std::size_t n : sizesOfEveryPath())
            {
                for (const std::size_t numPieces : {1U, 3U})
                {
                    SCOPED_TRACE(std::string(name) + ", n " + std::to_string(n) + ", pieces " +
                                 std::to_string(numPieces));
                    Factorisation factorisation(n, numPieces);
                    check(factorisation);
                }
            }
        });
}

} // namespace

TEST(LuWorkspaceTest, WhatItHeldBeforeIsNeverComputedWith)
{
    forEveryPath(
        [](Factorisation& factorisation)
        {
            for (const double leftover : tracedValues)
            {
                factorisation.fill(leftover);
                FloatingPointFlags::clear();
                factorisation.run();
                EXPECT_FALSE(FloatingPointFlags::hasTrace()) << "leftover " << leftover;
            }
        });
}

TEST(LuWorkspaceTest, WhatItHeldBeforeChangesNoBit)
{
    forEveryPath(
        [](Factorisation& factorisation)
        {
            factorisation.fill(0.0);
            factorisation.run();
            const std::vector<double> expected = factorisation.elements;
            const std::vector<int> expectedPivots = factorisation.pivots;
            for (const double leftover : tracedValues)
            {
                factorisation.fill(leftover);
                factorisation.run();
                EXPECT_TRUE(sameBits(factorisation.elements, expected)) << "leftover " << leftover;
                EXPECT_EQ(factorisation.pivots, expectedPivots) << "leftover " << leftover;
            }
        });
}

TEST(LuWorkspaceTest, RowsAndColumnsThatFillAPanelAreZeros)
{
    for (const std::size_t n : {65U, 66U, 71U, 72U, 73U, 99U, 107U, 150U})
    {
        SCOPED_TRACE(n);
        for (const double leftover : tracedValues)
        {
            Factorisation factorisation(n, 1);
            factorisation.fill(leftover);
            factorisation.run();

            const LuPlan plan(n, 1);
            const std::size_t numRows = n - plan.firstColumn(plan.numPanels - 1); // of the last panel, a square
            const std::size_t numFilled = fenn::kernels::roundUpToStrip(numRows);
            const double* cells = factorisation.workspace.data() + plan.panelOffset(plan.numPanels - 1);
            for (std::size_t r = 0; r < numFilled; ++r)
            {
                for (std::size_t c = r < numRows ? numRows : 0; c < numFilled; ++c)
                    EXPECT_EQ(cells[(r / 8 * plan.columnStride + c) * 8 + r % 8], 0.0) << r << ", " << c;
            }
        }
    }
}
