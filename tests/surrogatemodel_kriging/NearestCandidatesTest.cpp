#include "surrogatemodel_kriging/NearestCandidates.h"

#include <gtest/gtest.h>

namespace
{

/// Collects among points at the given coordinates, the target being 0, by a guess of the given rank. The relative error
/// of 0.1 makes the radius of what is collected 1.6 times that of the bound.
bool isCompleteAtRank(fenn::NearestCandidates<double>& candidates, const std::vector<double>& coordinates,
                      std::size_t rank)
{
    const double* coords = coordinates.data();
    const double target = 0.0;
    candidates.begin(coordinates.size(), 1, 1e300, 0.1, 0.0);
    candidates.measure(&coords, 1, coordinates.size(), &target);
    candidates.startCollection(rank);
    const auto admitAll = [](std::uint64_t)
    {
        return true;
    };
    return candidates.collect(&coords, 1, coordinates.size(), &target, admitAll) && candidates.isComplete();
}

} // namespace

TEST(NearestCandidatesTest, PointsBetweenTheBoundAndTheRadiusAreCollectedButDoNotComplete)
{
    fenn::NearestCandidates<double> candidates(2);

    EXPECT_FALSE(isCompleteAtRank(candidates, {1.0, 1.5, 10.0}, 1));

    EXPECT_EQ(candidates.size(), 2U);
}

TEST(NearestCandidatesTest, AsManyPointsAsAskedForWithinTheBoundComplete)
{
    fenn::NearestCandidates<double> candidates(2);

    EXPECT_TRUE(isCompleteAtRank(candidates, {1.0, 1.5, 10.0}, 2));

    EXPECT_EQ(candidates.size(), 2U);
}
