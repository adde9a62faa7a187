#include <cstdio>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "tests/support/BlockSet.h"
#include "tests/support/FunctionSemivariogram.h"
#include "tests/support/SampleBlocks.h"

using namespace fenn::test;

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// A file of the running test's own, removed afterwards.
class TestFile
{
public:
    TestFile()
        : path(testing::TempDir() + "SemivariogramDumpTest_" +
               testing::UnitTest::GetInstance()->current_test_info()->name())
    {
    }

    TestFile(const TestFile& other) = delete;
    TestFile& operator=(const TestFile& other) = delete;

    ~TestFile()
    {
        std::remove(path.c_str());
    }

    std::string text() const
    {
        std::ostringstream content;
        content << std::ifstream(path, std::ios::binary).rdbuf();
        return content.str();
    }

    const std::string path;
};

/// Twice the raw separation of one variable, unlike for the opposite direction: three times.
double twiceOrThrice(const std::vector<double>& separation)
{
    return separation[0] < 0.0 ? -3.0 * separation[0] : 2.0 * separation[0];
}

std::string dumpOf(const SampleBlocks& samples, int outputVar = 0)
{
    const FunctionSemivariogram semivariogram(twiceOrThrice);
    const KrigingMatrix matrix(samples.block(), 2, &semivariogram, 0);
    const TestFile file;
    EXPECT_TRUE(matrix.writeSemivariogramDump(file.path.c_str(), outputVar));
    return file.text();
}

SampleBlocks lineOf(const std::vector<double>& coordinates, const std::vector<double>& outputs)
{
    return SampleBlocks({coordinates}, {outputs});
}

} // namespace

TEST(SemivariogramDumpTest, ASingleBlockHasAGroupOfSelfPairsAndEachPairTwicePerDistance)
{
    // Variance 4. Lag 1: differences 2 and 2, modelled (2 + 3) / 2 * 4. Lag 2: difference 4, modelled (4 + 6) / 2 * 4.
    EXPECT_EQ(dumpOf(lineOf({0.0, 1.0, 2.0}, {1.0, 3.0, 5.0})), "#dist empiricalSV modeledSV count\n"
                                                                "#variance = 4\n"
                                                                "0 0 0 3\n"
                                                                "1 2 10 4\n"
                                                                "2 8 20 2\n");
}

TEST(SemivariogramDumpTest, NumbersHaveSixSignificantDigits)
{
    EXPECT_EQ(dumpOf(lineOf({0.0, 1e-7 / 3.0 + 1.0 / 3.0}, {0.0, 1e10 / 3.0})), "#dist empiricalSV modeledSV count\n"
                                                                                "#variance = 5.55556e+18\n"
                                                                                "0 0 0 2\n"
                                                                                "0.333333 5.55556e+18 4.62963e+18 2\n");
}

TEST(SemivariogramDumpTest, CoincidentPointsOfDifferentOutputsJoinTheSelfPairs)
{
    EXPECT_EQ(dumpOf(lineOf({5.0, 5.0}, {1.0, 3.0})), "#dist empiricalSV modeledSV count\n"
                                                      "#variance = 2\n"
                                                      "0 1 0 4\n");
}

TEST(SemivariogramDumpTest, TheSelfPairsAreModelledToo)
{
    const SampleBlocks samples = lineOf({0.0, 1.0}, {1.0, 3.0});
    const FunctionSemivariogram nugget([](const std::vector<double>&) { return 0.25; });
    const KrigingMatrix matrix(samples.block(), 2, &nugget, 0);
    const TestFile file;

    EXPECT_TRUE(matrix.writeSemivariogramDump(file.path.c_str(), 0));

    EXPECT_EQ(file.text(), "#dist empiricalSV modeledSV count\n"
                           "#variance = 2\n"
                           "0 0 0.5 2\n"
                           "1 2 0.5 2\n");
}

TEST(SemivariogramDumpTest, DistancesAreOfTheNormalisedInputsAndTheModelSeesRawOnes)
{
    const SampleBlocks samples({{{0.0, 3.0}, {0.0, 16.0}}}, {{{1.0, 3.0}}}, {{true, true}},
                               {normalizerOf(9.0, 2.0), normalizerOf(9.0, -0.5)});
    const FunctionSemivariogram first(twiceOrThrice);
    const KrigingMatrix matrix(samples.block(), 3, &first, 0);
    const TestFile file;

    EXPECT_TRUE(matrix.writeSemivariogramDump(file.path.c_str(), 0));

    EXPECT_EQ(file.text(), "#dist empiricalSV modeledSV count\n"
                           "#variance = 2\n"
                           "0 0 0 2\n"
                           "10 2 15 2\n"); // (6 + 9) / 2 * 2
}

TEST(SemivariogramDumpTest, BlankedPointsFormNoPairs)
{
    const SampleBlocks samples({{{0.0, 0.5, 1.0}}}, {{{1.0, 99.0, 3.0}}}, {{true, false, true}}, {Normalizer()});

    EXPECT_EQ(dumpOf(samples), "#dist empiricalSV modeledSV count\n"
                               "#variance = 2\n"
                               "0 0 0 2\n"
                               "1 2 5 2\n");
}

TEST(SemivariogramDumpTest, WithEverythingBlankedThereAreTheHeaderLinesOnly)
{
    const SampleBlocks samples({{{0.0, 1.0}}}, {{{1.0, 3.0}}}, {{false, false}}, {Normalizer()});

    EXPECT_EQ(dumpOf(samples), "#dist empiricalSV modeledSV count\n#variance = 0\n");
}

TEST(SemivariogramDumpTest, WithoutPointsThereAreTheHeaderLinesOnly)
{
    const SampleBlocks samples({{{}}}, {{{}}}, {{}}, {Normalizer()});

    EXPECT_EQ(dumpOf(samples), "#dist empiricalSV modeledSV count\n#variance = 0\n");
}

TEST(SemivariogramDumpTest, NothingOfABlockWithoutPointsIsRead)
{
    const SampleBlock line{{{0.0, 1.0}}, {{1.0, 3.0}}, {true, true}};
    const SampleBlock noArrays{{}, {}, {}, 0};
    const SampleBlock noArraysAndANegativeCount{{}, {}, {}, -3};
    BlockSet blocks({line, noArrays, noArraysAndANegativeCount}, {0.0}, {1.0});
    const FunctionSemivariogram semivariogram(twiceOrThrice);
    const KrigingMatrix matrix(*blocks, 2, &semivariogram, 0);
    const TestFile file;

    EXPECT_TRUE(matrix.writeSemivariogramDump(file.path.c_str(), 0));

    EXPECT_EQ(file.text(), "#dist empiricalSV modeledSV count\n"
                           "#variance = 2\n"
                           "0 0 0 2\n"
                           "1 2 5 2\n");
}

TEST(SemivariogramDumpTest, PairsAreFormedWithinABlockOncePerBlock)
{
    // No pair of lag 10 or 12 across the blocks; within each of them everything twice, for there are two blocks.
    const SampleBlocks samples({{{0.0, 1.0}}, {{10.0, 12.0}}}, {{{1.0, 1.0}}, {{3.0, 3.0}}},
                               {{true, true}, {true, true}}, {Normalizer()});

    EXPECT_EQ(dumpOf(samples), "#dist empiricalSV modeledSV count\n"
                               "#variance = 1.33333\n"
                               "0 0 0 8\n"
                               "1 0 3.33333 4\n"
                               "2 0 6.66667 4\n");
}

TEST(SemivariogramDumpTest, TheInnerIndexEndsWithTheSmallerOfTheTwoBlocks)
{
    // Block 0 has points 0, 1 and 3; block 1 has the point 10. Partners in block 0: all for block 0, its first for
    // block 1. Partners in block 1: its only point, for each of the two.
    const SampleBlocks samples({{{0.0, 1.0, 3.0}}, {{10.0}}}, {{{1.0, 1.0, 1.0}}, {{5.0}}},
                               {{true, true, true}, {true}}, {Normalizer()});

    EXPECT_EQ(dumpOf(samples), "#dist empiricalSV modeledSV count\n"
                               "#variance = 4\n"
                               "0 0 0 6\n"
                               "1 0 9.33333 3\n" // 0-1 once, 1-0 twice: (12 + 8 + 8) / 3
                               "2 0 20 2\n"      // 1-3 and 3-1: (24 + 16) / 2
                               "3 0 28 3\n");    // 0-3 once, 3-0 twice: (36 + 24 + 24) / 3
}

TEST(SemivariogramDumpTest, LagsCloserThanTheToleranceShareTheLineOfTheSmallest)
{
    const double below = 1.19e-6;

    EXPECT_EQ(dumpOf(lineOf({0.0, 1.0, -1.0 - below}, {0.0, 0.0, 0.0})), "#dist empiricalSV modeledSV count\n"
                                                                         "#variance = 0\n"
                                                                         "0 0 0 3\n"
                                                                         "1 0 0 4\n"
                                                                         "2 0 0 2\n");
}

TEST(SemivariogramDumpTest, LagsTheToleranceApartHaveLinesOfTheirOwn)
{
    const double tolerance = 1.1920928955078125e-06; // a power of two times 5: 1 + tolerance is exact

    EXPECT_EQ(dumpOf(lineOf({0.0, 1.0, -1.0 - tolerance}, {0.0, 0.0, 0.0})), "#dist empiricalSV modeledSV count\n"
                                                                             "#variance = 0\n"
                                                                             "0 0 0 3\n"
                                                                             "1 0 0 2\n"
                                                                             "1 0 0 2\n"
                                                                             "2 0 0 2\n");
}

TEST(SemivariogramDumpTest, TheToleranceIsMeasuredFromTheFirstLagOfAGroup)
{
    // Lags from point 0: 1, 1 + 0.7e-6 and 1 + 1.4e-6, of which the last is too far from the first. Among the others
    // 0.7e-6, twice, joins the self-pairs and 1.4e-6 does not.
    const SampleBlocks samples = lineOf({0.0, 1.0, 1.0 + 0.7e-6, 1.0 + 1.4e-6}, {0.0, 0.0, 0.0, 0.0});

    EXPECT_EQ(dumpOf(samples), "#dist empiricalSV modeledSV count\n"
                               "#variance = 0\n"
                               "0 0 0 8\n"
                               "1.4e-06 0 0 2\n"
                               "1 0 0 4\n"
                               "1 0 0 2\n");
}

TEST(SemivariogramDumpTest, TheChosenOutputIsCompared)
{
    const SampleBlocks samples({{0.0, 1.0}}, {{9.0, 9.0}, {1.0, 3.0}});

    EXPECT_EQ(dumpOf(samples, 1), "#dist empiricalSV modeledSV count\n"
                                  "#variance = 2\n"
                                  "0 0 0 2\n"
                                  "1 2 5 2\n");
}

TEST(SemivariogramDumpTest, LagsThatAreNaNComeLastEachOnItsOwnLine)
{
    std::string text = dumpOf(lineOf({notANumber, 0.0, 1.0}, {1.0, 1.0, 1.0}));
    for (std::size_t at = text.find("-nan"); at != std::string::npos; at = text.find("-nan"))
        text.erase(at, 1); // the sign of a NaN is nobody's business

    EXPECT_EQ(text, "#dist empiricalSV modeledSV count\n"
                    "#variance = 0\n"
                    "0 0 0 2\n"
                    "1 0 0 2\n"
                    "nan 0 nan 1\n"
                    "nan 0 nan 1\n"
                    "nan 0 nan 1\n"
                    "nan 0 nan 1\n"
                    "nan 0 nan 1\n");
}

TEST(SemivariogramDumpTest, AnEarlierFileIsReplaced)
{
    const SampleBlocks samples = lineOf({5.0, 5.0}, {1.0, 1.0});
    const FunctionSemivariogram semivariogram(twiceOrThrice);
    const KrigingMatrix matrix(samples.block(), 2, &semivariogram, 0);
    const TestFile file;
    std::ofstream(file.path) << std::string(1000, 'x');

    EXPECT_TRUE(matrix.writeSemivariogramDump(file.path.c_str(), 0));

    EXPECT_EQ(file.text(), "#dist empiricalSV modeledSV count\n#variance = 0\n0 0 0 4\n");
}

TEST(SemivariogramDumpTest, AFileThatCannotBeOpenedGivesFalseAndAsksTheModelNothing)
{
    const SampleBlocks samples = lineOf({0.0, 1.0}, {1.0, 3.0});
    const FunctionSemivariogram semivariogram(twiceOrThrice);
    const KrigingMatrix matrix(samples.block(), 2, &semivariogram, 0);
    const TestFile folderThatIsMissing;

    EXPECT_FALSE(matrix.writeSemivariogramDump((folderThatIsMissing.path + "/dump.txt").c_str(), 0));
    EXPECT_EQ(semivariogram.getNumEvaluations(), 0);
}
