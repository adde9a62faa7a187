#ifndef FENN_ANALYSIS_CONVEXHULL_H
#define FENN_ANALYSIS_CONVEXHULL_H

#include <cstddef>
#include <vector>

namespace fenn::analysis
{

/// Convex hull of places in two inputs: what lies within is surrounded by samples.
///
/// Source: A. M. Andrew, "Another efficient algorithm for convex hulls in two dimensions", Information Processing
/// Letters 9 (1979). Inputs of any units: each is measured in its own span.
///
/// Immutable after construction: any number of threads may ask.
class ConvexHull
{
public:
    /// Equally long, finite, not empty.
    ConvexHull(const std::vector<double>& x, const std::vector<double>& y);

    /// Whether a place lies within the hull or on its rim, to 1e-12 of the spans. False for NaN. Costs the logarithm
    /// of the number of corners.
    bool contains(double x, double y) const;

    /// The corners, anticlockwise from the leftmost and lowest one, which comes again at the end: x, then y.
    std::vector<std::vector<double>> calcOutline() const;

private:
    struct Place
    {
        double x;
        double y;
    };

    Place inSpans(double x, double y) const;
    static void buildChain(const std::vector<Place>& ascending, double side, std::vector<Place>& chain);
    static bool isOnSide(const std::vector<Place>& chain, double side, const Place& place);

    double lowestX;
    double lowestY;
    double spanX;
    double spanY;
    std::vector<Place> lowerChain; // by ascending x, from the leftmost to the rightmost corner
    std::vector<Place> upperChain;
};

} // namespace fenn::analysis

#endif
