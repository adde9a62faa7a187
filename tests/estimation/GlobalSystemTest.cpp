#include "estimation/GlobalSystem.h"

#include <gtest/gtest.h>

#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "tests/estimation/Samples.h"
#include "tests/support/ThrownError.h"

namespace
{

using fenn::estimation::GlobalSystem;
using fenn::estimation::makeModelParts;
using fenn::estimation::SampleSet;

/// Three points with a full nugget: semivariances of 1 between them, 0 on the diagonal.
SampleSet threePoints()
{
    return SampleSet({{0.0, 1.0, 2.0}}, {{5.0, 0.0, 9.0}});
}

const fenn::estimation::ModelSettings fullNugget{-1.0, {}, 0, 1.0, 1.0, 0};

// | 0 1 1 1 |             | -2  1  1  1 |
// | 1 0 1 1 |  inverse:   |  1 -2  1  1 | / 3
// | 1 1 0 1 |             |  1  1 -2  1 |
// | 1 1 1 0 |             |  1  1  1 -2 |

TEST(GlobalSystemTest, TheDiagonalIsThatOfTheInverseAtThePoints)
{
    const SampleSet samples = threePoints();
    const auto parts = makeModelParts(samples, fullNugget);
    const GlobalSystem system(*parts, 0);

    const std::vector<double> diagonal = system.calcDiagonal([](std::size_t) {});

    ASSERT_EQ(system.getNumPoints(), 3U);
    ASSERT_EQ(diagonal.size(), 3U);
    for (const double element : diagonal)
        EXPECT_NEAR(element, -2.0 / 3.0, 1e-15);
}

TEST(GlobalSystemTest, ValuesAtThePointsAreSolvedForWithZerosBelow)
{
    const SampleSet samples = threePoints();
    const auto parts = makeModelParts(samples, fullNugget);

    const std::vector<double> solution = GlobalSystem(*parts, 0).solve({3.0, 0.0, 6.0});

    ASSERT_EQ(solution.size(), 3U);
    EXPECT_NEAR(solution[0], 0.0, 1e-15);
    EXPECT_NEAR(solution[1], 3.0, 1e-15);
    EXPECT_NEAR(solution[2], -3.0, 1e-15);
}

TEST(GlobalSystemTest, PointsThatDoNotDetermineASystemAreRefused)
{
    // The second input is 0 when normalised: its drift term makes a row of zeros.
    const SampleSet onALine({{0.0, 1.0, 2.0, 4.0}, {3.0, 3.0, 3.0, 3.0}}, {{1.0, 2.0, 3.0, 4.0}});
    const auto parts = makeModelParts(onALine, {-1.0, {1.0, 1.0}, 0, 1.0, 0.0, 0});

    EXPECT_EQ(fenn::test::textOfError([&] { GlobalSystem(*parts, 1); }), "Singular matrix");
    EXPECT_EQ(fenn::test::textOfError([&] { GlobalSystem(*parts, 4); }),
              "Not enough source points to calculate drift.");
}

} // namespace
