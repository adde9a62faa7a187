#include "estimation/PointIndex.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include <nanoflann.hpp>

namespace fenn::estimation
{

namespace
{

// Up to here no sum of squares of differences overflows.
constexpr double largestCoordinate = 0x1p500;

// What the tree's lower bound of a distance may lie above the distance: a few roundings per level, of which there are
// some thousands at most (each halves a cell or takes a coordinate out of it), and what underflows.
constexpr double relativeSlack = 0x1p-20;
constexpr double absoluteSlack = 0x1p-1000;

constexpr std::size_t leafSize = 16; // measured: 8 to 32 differ by a tenth

bool isWithin(const double* values, std::size_t count, double limit)
{
    return std::all_of(values, values + count, [limit](double value) { return std::fabs(value) <= limit; });
}

} // namespace

PointIndex::Neighbours::Neighbours(std::size_t maxPts_) : maxPts(maxPts_), found(maxPts_ + 1) {}

void PointIndex::Neighbours::clear()
{
    numFound = 0;
    bound = maxPts > 0 ? std::numeric_limits<double>::max() : -1.0;
}

/// Inserted in order: most of what is offered after the first few leaves stays near the end.
void PointIndex::Neighbours::offer(const Neighbour& neighbour)
{
    std::size_t i = numFound;
    for (; i > 0 && neighbour < found[i - 1]; --i)
        found[i] = found[i - 1];
    found[i] = neighbour;
    if (numFound < maxPts)
        ++numFound;
    if (numFound == maxPts)
        bound = found[maxPts - 1].distance;
}

/// What the tree shows its finds to.
class PointIndex::Collector
{
public:
    Collector(Neighbours& nearest_, const std::uint32_t* order_) : nearest(&nearest_), order(order_) {}

    /// The tree leaves out what is not below: points as far away as the bound must pass.
    double worstDist() const
    {
        return nearest->bound * (1.0 + relativeSlack) + absoluteSlack;
    }

    bool addPoint(double distance, std::uint32_t place)
    {
        if (distance <= nearest->bound)
            nearest->offer({distance, order[place], place});
        return true;
    }

    bool full() const
    {
        return true;
    }

private:
    Neighbours* nearest;
    const std::uint32_t* order;
};

class PointIndex::Tree
{
public:
    Tree() = default;
    Tree(const Tree& other) = delete;
    Tree& operator=(const Tree& other) = delete;
    virtual ~Tree() = default;

    virtual void find(const double* target, Collector& collector) const = 0;

    /// Puts the points into the order of the leaves.
    virtual void arrange(std::vector<std::uint32_t>& order, std::vector<double>& coordinates) = 0;
};

/// kNumVars: the number of variables, or -1 for any.
template <int kNumVars>
class PointIndex::TreeOf : public Tree
{
public:
    TreeOf(const std::vector<double>& coordinates, std::size_t numVars)
        : points{coordinates.data(), numVars, coordinates.size() / numVars},
          index(static_cast<int>(numVars), points, nanoflann::KDTreeSingleIndexAdaptorParams(leafSize))
    {
    }

    void find(const double* target, Collector& collector) const override
    {
        index.findNeighbors(collector, target, nanoflann::SearchParams());
    }

    void arrange(std::vector<std::uint32_t>& order, std::vector<double>& coordinates) override
    {
        std::vector<std::uint32_t> newOrder(order.size());
        std::vector<double> newCoordinates(coordinates.size());
        for (std::size_t k = 0; k < order.size(); ++k)
        {
            newOrder[k] = order[index.vAcc[k]];
            std::copy_n(coordinates.data() + points.numVars * index.vAcc[k], points.numVars,
                        newCoordinates.data() + points.numVars * k);
        }
        order.swap(newOrder);
        coordinates.swap(newCoordinates);
        points.coordinates = coordinates.data();
        std::iota(index.vAcc.begin(), index.vAcc.end(), std::uint32_t{0});
    }

private:
    /// The form in which the library asks for points.
    struct Points
    {
        const double* coordinates;
        std::size_t numVars;
        std::size_t numPts;

        std::size_t kdtree_get_point_count() const
        {
            return numPts;
        }
        double kdtree_get_pt(std::uint32_t k, std::size_t v) const
        {
            return coordinates[(kNumVars > 0 ? static_cast<std::size_t>(kNumVars) : numVars) * k + v];
        }
        template <typename Box>
        bool kdtree_get_bbox(Box& /*box*/) const
        {
            return false; // none is known
        }
    };

    // Its sum of squares is the one that counts.
    using Distance = nanoflann::L2_Simple_Adaptor<double, Points, double, std::uint32_t>;

    Points points;
    nanoflann::KDTreeSingleIndexAdaptor<Distance, Points, kNumVars, std::uint32_t> index;
};

PointIndex::PointIndex(const std::vector<const double*>& coords, std::size_t numPts) : numVars(coords.size())
{
    order.reserve(numPts);
    coordinates.reserve(numPts * numVars);
    for (std::size_t p = 0; p < numPts; ++p)
    {
        const auto isFinite = [p](const double* values)
        {
            return std::isfinite(values[p]);
        };
        if (!std::all_of(coords.begin(), coords.end(), isFinite))
            continue;
        order.push_back(static_cast<std::uint32_t>(p));
        for (const double* values : coords)
            coordinates.push_back(values[p]);
    }
    if (numVars == 0 || order.empty() || !isWithin(coordinates.data(), coordinates.size(), largestCoordinate))
        return;
    if (numVars == 1)
        tree = std::make_unique<TreeOf<1>>(coordinates, numVars);
    else if (numVars == 2)
        tree = std::make_unique<TreeOf<2>>(coordinates, numVars);
    else if (numVars == 3)
        tree = std::make_unique<TreeOf<3>>(coordinates, numVars);
    else
        tree = std::make_unique<TreeOf<-1>>(coordinates, numVars);
    tree->arrange(order, coordinates);
}

PointIndex::~PointIndex() = default;

void PointIndex::find(const double* target, Neighbours& nearest) const
{
    nearest.clear();
    if (tree != nullptr && isWithin(target, numVars, largestCoordinate))
    {
        Collector collector(nearest, order.data());
        tree->find(target, collector);
    }
    else
        lookAtEveryPoint(target, nearest);
}

const std::vector<std::uint32_t>& PointIndex::getOrder() const
{
    return order;
}

double PointIndex::squaredDistance(const double* target, std::size_t place) const
{
    double sum = 0.0;
    for (std::size_t v = 0; v < numVars; ++v)
    {
        const double difference = target[v] - coordinates[numVars * place + v];
        sum += difference * difference;
    }
    return sum;
}

/// The definition.
void PointIndex::lookAtEveryPoint(const double* target, Neighbours& nearest) const
{
    for (std::size_t k = 0; k < order.size(); ++k)
    {
        const double distance = squaredDistance(target, k);
        // DELIBERATE: strict for the largest number, which the first bound is, as in the exhaustive search.
        // Test: PointIndexTest.ADistanceOfTheLargestNumberIsNotFound
        if (distance <= nearest.bound && distance < std::numeric_limits<double>::max())
            nearest.offer({distance, order[k], static_cast<std::uint32_t>(k)});
    }
}

} // namespace fenn::estimation
