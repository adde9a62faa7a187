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

/// Answers targets from their neighbours, each by a Kriging system of its own. Eight systems are solved at a time, one
/// in each lane of the vectors, with the bits and the failures of KrigingMatrix. What does not suit lanes is solved by
/// KrigingMatrix itself, one system at a time: systems that fail, the last few targets, systems of very many points.
///
/// A workspace: one per thread. Refers to what it is given, which must outlive it.
class LocalSystems
{
public:
    /// numNeighbours_: points per system. Throws as the constructor of KrigingMatrix.
    LocalSystems(const ModelParts& parts_, const IndexedPoints& points_, int driftOrder_, int numNeighbours_);

    /// Answers targets first to end - 1. Throws the library's Error of the first target that fails: "Singular matrix"
    /// or "Value overflow". A target whose distances overflow has fewer neighbours than asked for, and throws "Value
    /// overflow" too.
    void estimate(const Targets& targets, std::size_t first, std::size_t end, const Results& results);

    /// Leave-one-out: answers points first to end - 1 of ModelParts::getPoints(), each at its own coordinates from its
    /// neighbours among the others. Results are at the same indices.
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
    void write(std::size_t first, std::size_t count, const Results& results) const;

    const ModelParts& parts;
    const IndexedPoints& points;
    int driftOrder;
    std::size_t numNeighbours;
    std::size_t numRows;
    PointIndex::Neighbours nearest; // one more than numNeighbours: leave-one-out drops one
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
