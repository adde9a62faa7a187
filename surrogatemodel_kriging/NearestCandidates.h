#ifndef FENN_SURROGATEMODEL_KRIGING_NEARESTCANDIDATES_H
#define FENN_SURROGATEMODEL_KRIGING_NEARESTCANDIDATES_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <vector>

namespace fenn
{

/// Collects the points that may be among the N nearest to a target, by squared distances q that are only nearly those
/// that count: of another unit, without the scale, or in single precision.
///
/// What makes it safe. Let D(p) be the exact, real distance of point p in the unit of q, and let a relative error r and
/// an absolute error e hold for every point, with the scale s and the distance d(p) that counts:
///
///     sqrt(q) <= (1 + r) D + e,   D <= (1 + r) sqrt(q) + e,   (1 - r) D - e/2 <= sqrt(d)/|s| <= (1 + r) D + e/2
///
/// (the callers prove theirs). Once N points with q <= B are known, their D is at most (1 + r) sqrt(B) + e, so the N-th
/// d is at most that of such a D, a point that reaches it has D <= (1 + r)^3 (sqrt(B) + 2e) / (1 - r), and therefore
///
///     q <= W(B) = ((1 + r)^5 (sqrt(B) + 3 e))^2        (r^2 is lost beside the room left for roundings)
///
/// Every point with q > W can be left out, ties included. Those that are left are then compared by the distances that
/// count.
///
/// B is guessed from the smallest q of many small groups of points: few of the nearest points share a group, so the
/// K-th smallest minimum is hardly more than the K-th smallest q. A search is: begin, measure every stretch of points,
/// then startCollection, collect every stretch in the same order, isComplete; where that is false, the same again from
/// startCollection with a higher rank K. Buffers are kept between searches.
template <typename T>
class NearestCandidates
{
public:
    using Position = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;

    /// For searches of numNearest points, at least 1.
    explicit NearestCandidates(std::size_t numNearest_);

    /// Begins a search among at most numPts points in numStretches stretches. Points of a q above limitBound may be
    /// left out in any case. The two errors are r and e above.
    void begin(std::size_t numPts, std::size_t numStretches, T limitBound_, double relativeError,
               double absoluteError_);

    /// Coordinate arrays of count points, the next stretch.
    void measure(const T* const* coords, std::size_t numVars, std::size_t count, const T* target);

    /// Forgets all candidates and guesses B as a value that about rank points do not exceed. False when there are too
    /// few groups to tell: then all points up to limitBound are collected.
    bool startCollection(std::size_t rank);

    /// Collects from the next stretch. admit(position) tells whether a point takes part and may change its position to
    /// one that is unique among all stretches. False when more points than can be told apart by q lie at the bound:
    /// the search must then be done another way.
    template <typename Admit>
    bool collect(const T* const* coords, std::size_t numVars, std::size_t count, const T* target, Admit admit)
    {
        std::size_t numSeen = numCandidates;
        for (std::size_t first = 0; first < count; numSeen = numCandidates)
        {
            first = collectSome(coords, numVars, first, count, target);
            std::size_t numAdmitted = numSeen;
            for (std::size_t i = numSeen; i < numCandidates; ++i)
            {
                Position position = positions[i];
                const bool isAdmitted = admit(position);
                distances[numAdmitted] = distances[i];
                positions[numAdmitted] = position;
                numAdmitted += isAdmitted ? 1 : 0;
            }
            numCandidates = numAdmitted;
            if (numCandidates > limit && !tighten())
                return false;
        }
        nextGroup += numGroupsOf(count);
        return true;
    }

    /// Whether the nearest points are among the candidates; those that cannot be are then dropped.
    bool isComplete();

    std::size_t size() const
    {
        return numCandidates;
    }

    std::size_t getPosition(std::size_t i) const
    {
        return static_cast<std::size_t>(positions[i]);
    }

private:
    std::size_t numGroupsOf(std::size_t count) const
    {
        return (count + groupSize - 1) / groupSize;
    }

    std::size_t collectSome(const T* const* coords, std::size_t numVars, std::size_t first, std::size_t count,
                            const T* target);
    void setBound(T bound_);
    bool tighten();

    std::size_t numNearest;
    std::size_t limit; // candidates beyond this many are cut back
    std::vector<T> distances;
    std::vector<Position> positions;
    std::size_t numCandidates = 0;

    std::size_t groupSize = 0;
    std::unique_ptr<T[]> minima;    // of the groups of all stretches
    std::size_t minimaCapacity = 0; // groups
    std::vector<T> folded;          // the smallest of groups far apart
    std::size_t nextGroup = 0;

    T limitBound = 0;
    T bound = 0;     // B
    T threshold = 0; // W(B)
    double relativeFactor = 1.0;
    double absoluteError = 0.0;
};

extern template class NearestCandidates<float>;
extern template class NearestCandidates<double>;

} // namespace fenn

#endif
