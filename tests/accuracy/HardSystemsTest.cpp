// The gallery of hard systems is measured once; each test then holds one kind of figure against its bound.

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "tests/accuracy/AccuracyTables.h"

using namespace fenn::test;

namespace
{

class HardSystemsTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        systems() = measureHardSystems();
    }

    static void TearDownTestSuite()
    {
        systems().clear();
    }

    static std::vector<MeasuredSystem>& systems()
    {
        static std::vector<MeasuredSystem> all;
        return all;
    }

    static bool isFactorised(const MeasuredSystem& measured)
    {
        return measured.figures.failure.empty();
    }

    static bool isRegular(const MeasuredSystem& measured)
    {
        return !measured.figures.isSingularToWorkingPrecision();
    }

    static bool hasNoNugget(const MeasuredSystem& measured)
    {
        return measured.system.settings.nugget == 0.0;
    }

    using Condition = std::function<bool(const MeasuredSystem&)>;
    using Figure = std::function<double(const MeasuredSystem&)>;

    /// The figure of every system of a kind stays below the bound; prints the worst.
    static void expectBelow(const char* name, const Condition& isOfKind, const Figure& figureOf, double bound)
    {
        const MeasuredSystem* worst = nullptr;
        std::size_t numSystems = 0;
        for (const MeasuredSystem& measured : systems())
        {
            if (!isOfKind(measured))
                continue;
            ++numSystems;
            EXPECT_LT(figureOf(measured), bound) << measured.system.family << ": " << measured.system.name;
            if (worst == nullptr || !(figureOf(measured) <= figureOf(*worst)))
                worst = &measured;
        }
        ASSERT_NE(worst, nullptr);
        std::printf("%s, worst of %zu systems: %.3g (%s: %s)\n", name, numSystems, figureOf(*worst),
                    worst->system.family.c_str(), worst->system.name.c_str());
    }
};

} // namespace

TEST_F(HardSystemsTest, FactorsAreAsGoodAsThoseThatLapacksTestsAccept)
{
    expectBelow(
        "norm(LU - PA) / (n norm(A) eps)", isFactorised,
        [](const MeasuredSystem& measured) { return measured.figures.factorRatio; }, ratioThreshold);
}

TEST_F(HardSystemsTest, SolutionsAreAsGoodAsThoseThatLapacksTestsAccept)
{
    expectBelow(
        "norm(b - Ax) / (norm(A) norm(x) eps)", isFactorised,
        [](const MeasuredSystem& measured) { return measured.figures.solveRatio; }, ratioThreshold);
}

TEST_F(HardSystemsTest, SolutionsDeviateFromTheExactOnesNoMoreThanTheConditionAllows)
{
    // A solution ratio below 30 makes this no more than 30.
    expectBelow(
        "norm(x - exact x) / (condition norm(exact x) eps)", isRegular,
        [](const MeasuredSystem& measured) { return measured.figures.weightError; }, ratioThreshold);
}

TEST_F(HardSystemsTest, OnlyAZeroRowIsReportedAsSingular)
{
    for (const MeasuredSystem& measured : systems())
        EXPECT_EQ(measured.figures.failure, measured.system.failure) << measured.system.name;
}

TEST_F(HardSystemsTest, OnlyASystemThatIsSingularToWorkingPrecisionOverflows)
{
    std::size_t numOverflows = 0;
    for (const MeasuredSystem& measured : systems())
    {
        numOverflows += measured.figures.numOverflows;
        if (isRegular(measured))
        {
            EXPECT_EQ(measured.figures.numOverflows, 0u) << measured.system.name;
            EXPECT_EQ(measured.global.numFailures + measured.local.numFailures, 0u) << measured.system.name;
        }
    }
    EXPECT_GT(numOverflows, 0u);
}

TEST_F(HardSystemsTest, NoEstimateIsNotANumber)
{
    for (const MeasuredSystem& measured : systems())
        EXPECT_EQ(measured.figures.numNotANumber, 0u) << measured.system.name;
}

TEST_F(HardSystemsTest, AGlobalModelReproducesPolynomialsOfItsDriftsOrder)
{
    expectBelow(
        "polynomials, global", isRegular,
        [](const MeasuredSystem& measured) { return measured.global.polynomialError; }, 1e-11);
}

TEST_F(HardSystemsTest, ALocalModelReproducesPolynomialsOfItsDriftsOrder)
{
    // Neighbours in clusters make harder systems than all the points together.
    expectBelow(
        "polynomials, local", [](const MeasuredSystem& measured) { return isRegular(measured) && measured.hasLocal; },
        [](const MeasuredSystem& measured) { return measured.local.polynomialError; }, 1e-8);
}

TEST_F(HardSystemsTest, AGlobalModelWithoutNuggetMeetsItsSamplesAsCloselyAsTheConditionAllows)
{
    expectBelow(
        "samples, global, over condition eps",
        [](const MeasuredSystem& measured) { return isRegular(measured) && hasNoNugget(measured); },
        [](const MeasuredSystem& measured)
        { return measured.global.sampleError / (measured.figures.condition * relativeMachineEpsilon); },
        ratioThreshold);
}

TEST_F(HardSystemsTest, ALocalModelWithoutNuggetMeetsItsSamplesExactly)
{
    // The sample is the nearest point, so the right-hand side is the first column, and the last of its equal pivots is
    // the 1 of the constraint: nothing rounds.
    for (const MeasuredSystem& measured : systems())
    {
        if (isRegular(measured) && measured.hasLocal && hasNoNugget(measured))
        {
            EXPECT_EQ(measured.local.sampleError, 0.0) << measured.system.family << ": " << measured.system.name;
        }
    }
}

TEST_F(HardSystemsTest, TheAccuracyPageHoldsTheseFigures)
{
    std::ifstream file(FENN_ACCURACY_PAGE);
    const std::string page{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::string table = familyTable(systems());

    EXPECT_NE(page.find(table), std::string::npos) << "docs/accuracy.md should hold this table:\n" << table;
}
