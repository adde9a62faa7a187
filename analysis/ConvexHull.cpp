#include "analysis/ConvexHull.h"

#include <algorithm>
#include <cmath>

namespace fenn::analysis
{

namespace
{

constexpr double tolerance = 1e-12; // of the spans

/// Above 0 where c lies to the left of the way from a to b.
template <typename Place>
double turn(const Place& a, const Place& b, const Place& c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

} // namespace

ConvexHull::ConvexHull(const std::vector<double>& x, const std::vector<double>& y)
{
    const auto [leastX, greatestX] = std::minmax_element(x.begin(), x.end());
    const auto [leastY, greatestY] = std::minmax_element(y.begin(), y.end());
    lowestX = *leastX;
    lowestY = *leastY;
    // Of places on a line along an axis nothing is to be divided by.
    spanX = *greatestX > *leastX ? *greatestX - *leastX : 1.0;
    spanY = *greatestY > *leastY ? *greatestY - *leastY : 1.0;

    std::vector<Place> places;
    places.reserve(x.size());
    for (std::size_t i = 0; i < x.size(); ++i)
        places.push_back(inSpans(x[i], y[i]));
    std::sort(places.begin(), places.end(),
              [](const Place& a, const Place& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });
    buildChain(places, 1.0, lowerChain);
    buildChain(places, -1.0, upperChain);
}

ConvexHull::Place ConvexHull::inSpans(double x, double y) const
{
    return {(x - lowestX) / spanX, (y - lowestY) / spanY};
}

/// side: 1 for the chain below all places, -1 for the one above.
void ConvexHull::buildChain(const std::vector<Place>& ascending, double side, std::vector<Place>& chain)
{
    for (const Place& place : ascending)
    {
        // Of places above each other, the outermost alone: a chain has one height at every x.
        if (!chain.empty() && chain.back().x == place.x)
        {
            if (side * (place.y - chain.back().y) >= 0.0)
                continue;
            chain.pop_back();
        }
        while (chain.size() >= 2 && side * turn(chain[chain.size() - 2], chain.back(), place) <= 0.0)
            chain.pop_back();
        chain.push_back(place);
    }
}

/// Whether the place lies on the inner side of the chain, as for an endless line where it lies beyond its ends.
bool ConvexHull::isOnSide(const std::vector<Place>& chain, double side, const Place& place)
{
    if (chain.size() == 1)
        return side * (place.y - chain[0].y) >= -tolerance;
    const auto next = std::upper_bound(chain.begin() + 1, chain.end() - 1, place.x,
                                       [](double x, const Place& corner) { return x < corner.x; });
    const Place& a = *(next - 1);
    const Place& b = *next;
    return side * turn(a, b, place) >= -tolerance * std::hypot(b.x - a.x, b.y - a.y);
}

std::vector<std::vector<double>> ConvexHull::calcOutline() const
{
    std::vector<std::vector<double>> outline(2);
    const auto add = [&](const Place& place)
    {
        outline[0].push_back(lowestX + spanX * place.x);
        outline[1].push_back(lowestY + spanY * place.y);
    };
    std::for_each(lowerChain.begin(), lowerChain.end(), add);
    const auto isShared = [](const Place& a, const Place& b)
    {
        return a.x == b.x && a.y == b.y;
    };
    const bool isRightEndShared = isShared(lowerChain.back(), upperChain.back());
    std::for_each(upperChain.rbegin() + (isRightEndShared ? 1 : 0), upperChain.rend(), add);
    if (!isShared(lowerChain.front(), upperChain.front()))
        add(lowerChain.front());
    return outline;
}

bool ConvexHull::contains(double x, double y) const
{
    const Place place = inSpans(x, y);
    const bool isWithinSpan = place.x >= lowerChain.front().x - tolerance && place.x <= lowerChain.back().x + tolerance;
    return isWithinSpan && isOnSide(lowerChain, 1.0, place) && isOnSide(upperChain, -1.0, place);
}

} // namespace fenn::analysis
