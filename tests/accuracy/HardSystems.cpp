#include "tests/accuracy/HardSystems.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "tests/support/Samples.h"

namespace fenn::test
{

namespace
{

using Points = std::vector<std::vector<double>>; // one list per input variable

constexpr double farAway = 1e12;

struct Distance
{
    const char* text;
    double value;
};

constexpr Distance distances[] = {{"1e-2", 1e-2},   {"1e-4", 1e-4},   {"1e-6", 1e-6},  {"1e-8", 1e-8},
                                  {"1e-10", 1e-10}, {"1e-12", 1e-12}, {"1e-14", 1e-14}};

Points scattered(std::size_t numInputVars, std::size_t numPts, std::uint64_t seed)
{
    return randomValues(numInputVars, numPts, 0.0, 1.0, seed);
}

/// Each of numCentres points and numEach - 1 more at no more than the distance from it, in every variable.
Points clusters(std::size_t numInputVars, std::size_t numCentres, std::size_t numEach, double distance,
                std::uint64_t seed)
{
    RandomNumbers numbers(seed);
    const Points centres = scattered(numInputVars, numCentres, seed + 1);
    Points points(numInputVars);
    for (std::size_t v = 0; v < numInputVars; ++v)
    {
        for (const double centre : centres[v])
        {
            points[v].push_back(centre);
            for (std::size_t i = 1; i < numEach; ++i)
                points[v].push_back(centre + distance * numbers.next(-1.0, 1.0));
        }
    }
    return points;
}

/// numPts points of the affine map of as many random variables as columns[0] has entries, the last entry the constant.
Points affine(const std::vector<std::vector<double>>& columns, std::size_t numPts, std::uint64_t seed)
{
    const std::size_t numFree = columns[0].size() - 1;
    const Points parameters = scattered(numFree, numPts, seed);
    Points points(columns.size(), std::vector<double>(numPts));
    for (std::size_t v = 0; v < columns.size(); ++v)
    {
        for (std::size_t i = 0; i < numPts; ++i)
        {
            double value = columns[v][numFree];
            for (std::size_t p = 0; p < numFree; ++p)
                value += columns[v][p] * parameters[p][i];
            points[v][i] = value;
        }
    }
    return points;
}

Points grid(std::size_t numInputVars, std::size_t numEach)
{
    Points points(numInputVars);
    std::size_t numPts = 1;
    for (std::size_t v = 0; v < numInputVars; ++v)
        numPts *= numEach;
    for (std::size_t i = 0; i < numPts; ++i)
    {
        std::size_t rest = i;
        for (std::size_t v = 0; v < numInputVars; ++v)
        {
            points[v].push_back(static_cast<double>(rest % numEach));
            rest /= numEach;
        }
    }
    return points;
}

Points movedBy(double offset, Points points)
{
    for (std::vector<double>& variable : points)
    {
        for (double& value : variable)
            value += offset;
    }
    return points;
}

/// Variable v times factor v.
Points scaledBy(const std::vector<double>& factors, Points points)
{
    for (std::size_t v = 0; v < points.size(); ++v)
    {
        for (double& value : points[v])
            value *= factors[v];
    }
    return points;
}

Points makeTargets(const Points& inputs, std::uint64_t seed)
{
    RandomNumbers numbers(seed);
    const std::size_t numPts = inputs[0].size();
    const auto pickPoint = [&]
    {
        return static_cast<std::size_t>(numbers.next() * static_cast<double>(numPts));
    };
    Points targets(inputs.size());
    for (std::size_t t = 0; t < numTargetsBetweenSamples; ++t)
    {
        const std::size_t a = pickPoint();
        const std::size_t b = pickPoint();
        const double share = numbers.next();
        for (std::size_t v = 0; v < inputs.size(); ++v)
            targets[v].push_back(inputs[v][a] + share * (inputs[v][b] - inputs[v][a]));
    }
    const std::size_t on = pickPoint();
    const std::size_t beside = pickPoint();
    for (std::size_t v = 0; v < inputs.size(); ++v)
    {
        const auto [low, high] = std::minmax_element(inputs[v].begin(), inputs[v].end());
        const double range = *high - *low;
        targets[v].push_back(inputs[v][on]);
        targets[v].push_back(inputs[v][beside] + 1e-10 * range);
        targets[v].push_back(numbers.next(*low, *high));
        targets[v].push_back(numbers.next(*low, *high));
        targets[v].push_back(*low);
        targets[v].push_back(*high + range);
    }
    return targets;
}

/// Collects the systems of one family after the other.
class Gallery
{
public:
    void beginFamily(std::string name)
    {
        family = std::move(name);
    }

    HardSystem& add(std::string name, Points inputs, int driftOrder)
    {
        const std::uint64_t seed = 7000 + 10 * systems.size();
        HardSystem system;
        system.family = family;
        system.name = std::move(name);
        system.outputs = randomValues(1, inputs[0].size(), -1.0, 1.0, seed)[0];
        system.settings.driftOrder = driftOrder;
        system.targets = makeTargets(inputs, seed + 1);
        system.inputs = std::move(inputs);
        systems.push_back(std::move(system));
        return systems.back();
    }

    std::vector<HardSystem> systems;

private:
    std::string family;
};

std::string dimsText(std::size_t numInputVars, std::size_t numPts, int driftOrder)
{
    return std::to_string(numPts) + " points in " + std::to_string(numInputVars) + " variables, drift " +
           std::to_string(driftOrder);
}

void addYardsticks(Gallery& gallery)
{
    gallery.beginFamily("scattered points, as a yardstick");
    struct Shape
    {
        std::size_t numInputVars, numPts;
        int driftOrder;
    };
    for (const Shape& shape : {Shape{1, 20, 0}, Shape{1, 40, 2}, Shape{2, 60, 1}, Shape{2, 200, 0}, Shape{3, 60, 2},
                               Shape{3, 200, 1}, Shape{4, 80, 1}, Shape{4, 100, 3}})
    {
        gallery.add(dimsText(shape.numInputVars, shape.numPts, shape.driftOrder),
                    scattered(shape.numInputVars, shape.numPts, 100 + shape.numPts), shape.driftOrder);
    }
}

void addPairs(Gallery& gallery)
{
    gallery.beginFamily("pairs 1e-2 to 1e-14 apart");
    for (const Distance& distance : distances)
    {
        for (std::size_t d = 1; d <= 4; ++d)
        {
            gallery.add(std::string(distance.text) + ", " + dimsText(d, 60, 1),
                        clusters(d, 30, 2, distance.value, 200 + d), 1);
        }
        gallery
            .add(std::string(distance.text) + ", nugget, " + dimsText(2, 60, 1),
                 clusters(2, 30, 2, distance.value, 210), 1)
            .settings.nugget = 0.1;
    }
}

void addClusters(Gallery& gallery)
{
    gallery.beginFamily("clusters 1e-2 to 1e-14 wide");
    for (const Distance& distance : distances)
    {
        for (std::size_t d = 1; d <= 3; ++d)
        {
            gallery.add(std::string(distance.text) + ", " + dimsText(d, 64, 0),
                        clusters(d, 8, 8, distance.value, 300 + d), 0);
        }
        gallery.add(std::string(distance.text) + ", two clusters, " + dimsText(2, 60, 0),
                    clusters(2, 2, 30, distance.value, 310), 0);
    }
    gallery.add("1e-8, " + dimsText(3, 200, 1), clusters(3, 20, 10, 1e-8, 320), 1);
}

void addCoincident(Gallery& gallery)
{
    gallery.beginFamily("coincident points, not merged");
    for (std::size_t d = 1; d <= 3; ++d)
    {
        gallery.add("pairs, " + dimsText(d, 40, 0), clusters(d, 20, 2, 0.0, 400 + d), 0);
        gallery.add("tens, " + dimsText(d, 60, 1), clusters(d, 6, 10, 0.0, 410 + d), 1);
    }
    gallery.add("nugget, " + dimsText(2, 40, 1), clusters(2, 20, 2, 0.0, 420), 1).settings.nugget = 0.1;
}

void addFlatSets(Gallery& gallery)
{
    gallery.beginFamily("collinear and coplanar points, drift 0");
    const std::vector<std::pair<std::string, std::vector<std::vector<double>>>> maps{
        {"diagonal line in 2", {{1.0, 0.0}, {1.0, 0.0}}},
        {"tilted line in 2", {{1.0, 0.0}, {0.3, 0.1}}},
        {"tilted line in 3", {{1.0, 0.0}, {0.3, 0.1}, {-0.7, 0.2}}},
        {"tilted plane in 3", {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.4, 0.7, 0.1}}},
        {"tilted solid in 4", {{1., 0., 0., 0.}, {0., 1., 0., 0.}, {0., 0., 1., 0.}, {0.4, 0.7, -0.3, 0.1}}}};
    for (const auto& [name, columns] : maps)
        gallery.add(name, affine(columns, 50, 500), 0);
    const std::vector<std::vector<double>> planeAcrossAxis{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 0.5}};
    gallery.add("plane across an axis in 3, scale given", affine(planeAcrossAxis, 50, 501), 0).settings.scaleFactors = {
        1.0, 1.0, 1.0};

    gallery.beginFamily("collinear and coplanar points, drift 1 to 3");
    for (const auto& [name, columns] : maps)
    {
        for (int driftOrder = 1; driftOrder <= (columns.size() < 4 ? 3 : 1); ++driftOrder)
            gallery.add(name + ", drift " + std::to_string(driftOrder), affine(columns, 50, 510), driftOrder);
    }
    HardSystem& zeroRow =
        gallery.add("plane across an axis in 3, scale given, drift 1", affine(planeAcrossAxis, 50, 511), 1);
    zeroRow.settings.scaleFactors = {1.0, 1.0, 1.0};
    zeroRow.failure = "Singular matrix"; // the drift term of the third variable is 0 at every point
}

void addRanges(Gallery& gallery)
{
    const std::pair<const char*, double> ranges[] = {{"range fraction of 1e-3", 1e-3}, {"range fraction of 1e3", 1e3}};
    for (const auto& [name, rangeFraction] : ranges)
    {
        gallery.beginFamily(name);
        for (std::size_t d = 1; d <= 4; ++d)
        {
            for (const int driftOrder : {0, 2})
            {
                gallery.add(dimsText(d, 80, driftOrder), scattered(d, 80, 600 + d), driftOrder).settings.rangeFraction =
                    rangeFraction;
            }
        }
        gallery.add(dimsText(2, 250, 1), scattered(2, 250, 610), 1).settings.rangeFraction = rangeFraction;
    }
}

void addJustEnough(Gallery& gallery)
{
    constexpr int driftOrder = 4;
    gallery.beginFamily("drift 4, one point more than terms");
    for (std::size_t d = 1; d <= 4; ++d)
    {
        const auto numPts = static_cast<std::size_t>(numDriftTerms(driftOrder, static_cast<int>(d))) + 1;
        gallery.add(dimsText(d, numPts, driftOrder), scattered(d, numPts, 700 + d), driftOrder);
    }
    gallery.beginFamily("drift 4, as many points as terms");
    for (std::size_t d = 1; d <= 4; ++d)
    {
        const auto numPts = static_cast<std::size_t>(numDriftTerms(driftOrder, static_cast<int>(d)));
        gallery.add(dimsText(d, numPts, driftOrder), scattered(d, numPts, 710 + d), driftOrder);
    }
}

void addOffsets(Gallery& gallery)
{
    gallery.beginFamily("coordinates offset by 1e12");
    for (std::size_t d = 1; d <= 4; ++d)
    {
        gallery.add("box of 1, " + dimsText(d, 60, 1), movedBy(farAway, scattered(d, 60, 800 + d)), 1);
        gallery.add("box of 1000, " + dimsText(d, 60, 2),
                    movedBy(farAway, scaledBy(std::vector<double>(d, 1000.0), scattered(d, 60, 810 + d))), 2);
    }
    gallery.beginFamily("outputs offset by 1e12");
    for (std::size_t d = 1; d <= 4; ++d)
    {
        for (double& output : gallery.add(dimsText(d, 60, 1), scattered(d, 60, 820 + d), 1).outputs)
            output += farAway;
    }
}

void addOthers(Gallery& gallery)
{
    gallery.beginFamily("regular grids");
    gallery.add("line of 100, drift 1", grid(1, 100), 1);
    gallery.add("14 x 14, drift 1", grid(2, 14), 1);
    gallery.add("6 x 6 x 6, drift 2", grid(3, 6), 2);
    gallery.add("3 x 3 x 3 x 3, drift 1", grid(4, 3), 1);

    gallery.beginFamily("several at once");
    HardSystem& wide = gallery.add("pairs 1e-14 apart, drift 4, range fraction 1e3", clusters(2, 30, 2, 1e-14, 900), 4);
    wide.settings.rangeFraction = 1e3;
    HardSystem& narrow =
        gallery.add("clusters 1e-10 wide, drift 4, range fraction 1e-3", clusters(2, 25, 4, 1e-10, 901), 4);
    narrow.settings.rangeFraction = 1e-3;
    gallery.add("ranges of 1e-6, 1 and 1e9, drift 3", scaledBy({1e-6, 1.0, 1e9}, scattered(3, 80, 902)), 3);
    gallery.add("coordinates offset by 1e12, clusters 1e-2 wide, drift 2",
                movedBy(farAway, clusters(2, 20, 4, 1e-2, 903)), 2);
    HardSystem& unequal = gallery.add("scale factors 1e-5 and 1e5, drift 2", scattered(2, 80, 904), 2);
    unequal.settings.scaleFactors = {1e-5, 1e5};
}

void addDrifts(Gallery& gallery)
{
    gallery.beginFamily("drift 0 to 4, points to spare");
    for (std::size_t d = 1; d <= 3; ++d)
    {
        for (int driftOrder = 0; driftOrder <= 4; ++driftOrder)
            gallery.add(dimsText(d, 90, driftOrder), scattered(d, 90, 750 + d), driftOrder);
    }
}

} // namespace

std::vector<HardSystem> makeHardSystems()
{
    Gallery gallery;
    addYardsticks(gallery);
    addPairs(gallery);
    addClusters(gallery);
    addCoincident(gallery);
    addFlatSets(gallery);
    addRanges(gallery);
    addJustEnough(gallery);
    addOffsets(gallery);
    addOthers(gallery);
    addDrifts(gallery);
    return std::move(gallery.systems);
}

std::vector<double> pointAt(const std::vector<std::vector<double>>& points, std::size_t i)
{
    std::vector<double> point;
    for (const std::vector<double>& variable : points)
        point.push_back(variable[i]);
    return point;
}

double largestMagnitude(const std::vector<double>& values)
{
    double largest = 0.0;
    for (const double value : values)
        largest = std::max(largest, std::fabs(value));
    return largest;
}

} // namespace fenn::test
