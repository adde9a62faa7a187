#ifndef FENN_ESTIMATION_LOCALSYSTEMS_H
#define FENN_ESTIMATION_LOCALSYSTEMS_H

#include <cstddef>
#include <vector>

#include "estimation/Estimator.h"
#include "estimation/PointIndex.h"
#include "surrogatemodel_kriging/ElementStore.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/SourcePointRef.h"

namespace fenn::estimation
{

class IndexedPoints;

/// Answers targets from their nearest points, each by a Kriging system of its own: eight systems at a time, one in each
/// lane of the vectors, with the bits and the failures of KrigingMatrix, which takes those that lanes cannot, one by
/// one: a system with a failure, the last few targets, systems of very many points.
///
/// A workspace: one per thread. Refers to what it is given, which must outlive it.
class LocalSystems
{
public:
    /// numNeighbours_: points per system. Throws as the constructor of KrigingMatrix.
    LocalSystems(const ModelParts& parts_, const IndexedPoints& points_, int driftOrder_, int numNeighbours_);

    /// Targets first to end - 1. Throws the library's Error of the first target that fails: "Singular matrix", "Value
    /// overflow", which is also that of a target whose distances overflow, so that fewer points than wanted are near.
    void estimate(const Targets& targets, std::size_t first, std::size_t end, const Results& results);

    /// The same for the points themselves, each at its own place from the nearest others. Positions first to end - 1 of
    /// ModelParts::getPoints(), entries of the results likewise.
    void estimateWithoutEach(std::size_t first, std::size_t end, const Results& results);

private:
    /// A target in its lane, with its neighbours.
    struct Lane
    {
        std::vector<double> coords; // raw
        std::vector<std::uint32_t> places;
        std::vector<SourcePointRef> points;
        bool isComplete = false; // as many neighbours as wanted
    };

    template <typename SetTarget>
    void answer(std::size_t first, std::size_t end, const Results& results, const SetTarget& setTarget);
    void setNeighbours(Lane& lane, std::size_t leftOut);
    void answerTogether(std::size_t first, std::size_t count, const Results& results);
    void answerAlone(const Lane& lane, std::size_t t, const Results& results);
    void gather();
    void writeConstraints();
    void write(std::size_t first, std::size_t count, unsigned odd, const Results& results) const;

    const ModelParts& parts;
    const IndexedPoints& points;
    int driftOrder;
    std::size_t numNeighbours;
    std::size_t numRows;
    PointIndex::Neighbours nearest; // one more than wanted, for a point that is left out
    std::vector<double> normalised;
    std::vector<Lane> lanes;

    // Side by side, lane by lane in each entry.
    std::vector<double> scales;
    ElementStore coordinates; // of the neighbours, variable by variable
    ElementStore targets;
    ElementStore outputs; // of the neighbours, variable by variable
    ElementStore columns; // of the systems
    ElementStore rightHandSides;
    ElementStore solutions;
    ElementStore workspace;
    std::vector<double> driftCoords;
    std::vector<double> driftScratch;
    std::vector<double> driftTerms;

    KrigingMatrix system; // of one target alone
    std::vector<double> rightHandSide;
    std::vector<double> solution;
    std::vector<double> scratch;
};

} // namespace fenn::estimation

#endif
