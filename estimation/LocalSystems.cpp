#include "estimation/LocalSystems.h"

#include <algorithm>
#include <limits>

#include "estimation/IndexedPoints.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/DriftTerms.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "surrogatemodel_kriging/kernels/SideBySideKernels.h"

namespace fenn::estimation
{

namespace
{

constexpr std::size_t width = kernels::numSideBySide;

// Fewer targets than this are answered one by one: eight systems side by side take as long as three alone.
constexpr std::size_t minTogether = 3;

// With more rows eight systems no longer fit into the cache of a core, and one alone reaches the speed of large
// matrices.
constexpr std::size_t maxRowsTogether = 128;

constexpr std::size_t noPoint = std::numeric_limits<std::size_t>::max();

} // namespace

LocalSystems::LocalSystems(const ModelParts& parts_, const IndexedPoints& points_, int driftOrder_, int numNeighbours_)
    : parts(parts_),
      points(points_),
      driftOrder(driftOrder_),
      numNeighbours(static_cast<std::size_t>(numNeighbours_)),
      numRows(0),
      nearest(numNeighbours + 1),
      normalised(points.getNumInputVars()),
      lanes(width),
      scales(points.getNumInputVars()),
      system(parts.getDataBlock(), numNeighbours_, &parts.getSemivariogram(), driftOrder),
      scratch(points.getNumInputVars())
{
    const std::size_t numInputVars = points.getNumInputVars();
    numRows = static_cast<std::size_t>(system.getDimension());
    for (Lane& lane : lanes)
    {
        lane.coords.resize(numInputVars);
        lane.places.resize(numNeighbours);
        lane.points.resize(numNeighbours);
    }
    rightHandSide.resize(numRows);
    solution.resize(numRows);
    if (numRows > maxRowsTogether)
        return;
    coordinates.allocate(numInputVars * numNeighbours * width);
    targets.allocate(numInputVars * width);
    outputs.allocate(points.getNumOutputVars() * numNeighbours * width);
    columns.allocate(kernels::sideBySideColumnsSize(numRows));
    rightHandSides.allocate(numRows * width);
    solutions.allocate(numRows * width);
    workspace.allocate(kernels::sideBySideWorkspaceSize(numRows));
    driftCoords.resize(numInputVars * width);
    driftScratch.resize(numInputVars * width);
    driftTerms.resize((numRows - numNeighbours) * width);
}

void LocalSystems::estimate(const Targets& targets_, std::size_t first, std::size_t end, const Results& results)
{
    answer(first, end, results,
           [&](Lane& lane, std::size_t t)
           {
               for (std::size_t v = 0; v < lane.coords.size(); ++v)
                   lane.coords[v] = targets_.coords[v][t];
               setNeighbours(lane, noPoint);
           });
}

void LocalSystems::estimateWithoutEach(std::size_t first, std::size_t end, const Results& results)
{
    answer(first, end, results,
           [&](Lane& lane, std::size_t position)
           {
               const auto& [b, p] = parts.getPoints()[position];
               const std::vector<double*>& inputs = parts.getDataBlock().getInputValueArraysForBlock(b);
               for (std::size_t v = 0; v < lane.coords.size(); ++v)
                   lane.coords[v] = inputs[v][p];
               setNeighbours(lane, position);
           });
}

template <typename SetTarget>
void LocalSystems::answer(std::size_t first, std::size_t end, const Results& results, const SetTarget& setTarget)
{
    for (std::size_t t = first; t < end; t += width)
    {
        const std::size_t count = std::min(width, end - t);
        for (std::size_t k = 0; k < count; ++k)
            setTarget(lanes[k], t + k);
        if (count >= minTogether && numRows <= maxRowsTogether)
            answerTogether(t, count, results);
        else
        {
            for (std::size_t k = 0; k < count; ++k)
                answerAlone(lanes[k], t + k, results);
        }
    }
}

/// leftOut: position of a point that is not to be a neighbour.
void LocalSystems::setNeighbours(Lane& lane, std::size_t leftOut)
{
    points.find(lane.coords.data(), normalised.data(), nearest);
    std::size_t count = 0;
    for (std::size_t i = 0; i < nearest.size() && count < numNeighbours; ++i)
    {
        if (nearest[i].position == leftOut)
            continue;
        lane.places[count] = nearest[i].place;
        lane.points[count] = parts.getPoints()[nearest[i].position];
        ++count;
    }
    lane.isComplete = count == numNeighbours;
    std::fill(lane.places.begin() + static_cast<std::ptrdiff_t>(count), lane.places.end(), 0);
}

/// Targets in lanes 0 to count - 1, the first of them target number first.
void LocalSystems::answerTogether(std::size_t first, std::size_t count, const Results& results)
{
    for (std::size_t k = count; k < width; ++k)
        lanes[k] = lanes[count - 1]; // an ordinary system: unused lanes are no slower than used ones
    gather();
    const SphericalSemivariogram& semivariogram = parts.getSemivariogram();
    kernels::evaluateSphericalSideBySide(semivariogram.getKernelModel(scales.data()), coordinates.data(),
                                         targets.data(), numNeighbours, columns.data(), numRows);
    writeConstraints();
    std::copy_n(columns.data() + numRows * numRows * width, numRows * width, rightHandSides.data());
    unsigned odd = kernels::solveSideBySide(columns.data(), numRows, solutions.data(), workspace.data());
    for (std::size_t k = 0; k < count; ++k)
        odd |= lanes[k].isComplete ? 0U : 1U << k;
    write(first, count, results); // what stands in odd lanes is overwritten
    for (std::size_t k = 0; k < count; ++k)
    {
        if ((odd >> k & 1U) != 0)
            answerAlone(lanes[k], first + k, results);
    }
}

void LocalSystems::gather()
{
    const std::size_t numInputVars = points.getNumInputVars();
    const std::size_t numOutputVars = points.getNumOutputVars();
    for (std::size_t k = 0; k < width; ++k)
    {
        const Lane& lane = lanes[k];
        for (std::size_t v = 0; v < numInputVars; ++v)
            targets.data()[v * width + k] = lane.coords[v];
        for (std::size_t j = 0; j < numNeighbours; ++j)
        {
            const double* values = points.getValues(lane.places[j]);
            for (std::size_t v = 0; v < numInputVars; ++v)
                coordinates.data()[(v * numNeighbours + j) * width + k] = values[v];
            for (std::size_t o = 0; o < numOutputVars; ++o)
                outputs.data()[(o * numNeighbours + j) * width + k] = values[numInputVars + o];
        }
    }
}

/// The rows and columns after those of the points: drift terms and ones, in the systems and the right-hand sides.
void LocalSystems::writeConstraints()
{
    const std::size_t numConstraints = numRows - numNeighbours;
    const auto entry = [this](std::size_t i, std::size_t c)
    {
        return columns.data() + (c * numRows + i) * width;
    };
    const auto calcTerms = [&](const double* coords, std::size_t stride)
    {
        for (std::size_t v = 0; v < normalised.size(); ++v)
            std::copy_n(coords + v * stride, width, driftCoords.data() + v * width);
        double* next = driftTerms.data();
        if (driftOrder > 0)
            next = writeDriftTerms<width>(next, driftOrder, driftCoords.data(), parts.getNormalizers(),
                                          static_cast<int>(normalised.size()), driftScratch.data());
        std::fill_n(next, width, 1.0);
    };
    for (std::size_t j = 0; j < numNeighbours; ++j)
    {
        calcTerms(coordinates.data() + j * width, numNeighbours * width);
        for (std::size_t q = 0; q < numConstraints; ++q)
        {
            std::copy_n(driftTerms.data() + q * width, width, entry(j, numNeighbours + q));
            std::copy_n(driftTerms.data() + q * width, width, entry(numNeighbours + q, j));
        }
    }
    for (std::size_t q = 0; q < numConstraints; ++q)
        std::fill_n(entry(numNeighbours, numNeighbours + q), numConstraints * width, 0.0);
    calcTerms(targets.data(), width);
    std::copy_n(driftTerms.data(), numConstraints * width, entry(numNeighbours, numRows));
}

void LocalSystems::write(std::size_t first, std::size_t count, const Results& results) const
{
    double sums[width];
    // Starting with the first product, as KrigingMatrix::estimate and Matrix::dotProduct do.
    const auto sumUp = [&](const double* weights, const double* factors, std::size_t numFactors)
    {
        for (std::size_t k = 0; k < width; ++k)
            sums[k] = weights[k] * factors[k];
        for (std::size_t j = 1; j < numFactors; ++j)
        {
            for (std::size_t k = 0; k < width; ++k)
                sums[k] += weights[j * width + k] * factors[j * width + k];
        }
    };
    const auto writeTo = [&](double* values)
    {
        std::copy_n(sums, count, values + first);
    };
    for (std::size_t o = 0; o < results.estimates.size(); ++o)
    {
        sumUp(solutions.data(), outputs.data() + o * numNeighbours * width, numNeighbours);
        writeTo(results.estimates[o]);
    }
    if (results.variances != nullptr)
    {
        sumUp(solutions.data(), rightHandSides.data(), numRows);
        writeTo(results.variances);
    }
    if (results.driftProducts != nullptr)
    {
        const std::size_t firstDriftRow = numNeighbours * width;
        sumUp(solutions.data() + firstDriftRow, rightHandSides.data() + firstDriftRow, numRows - numNeighbours);
        writeTo(results.driftProducts);
    }
}

void LocalSystems::answerAlone(const Lane& lane, std::size_t t, const Results& results)
{
    // Distances overflowed. (The plug-in would continue with the points of the target before.)
    if (!lane.isComplete)
        throw SurrogateModelInterface::Error("Value overflow");
    system.assemble(lane.points, scratch);
    system.luDecompose();
    system.buildRightHandSide(rightHandSide.data(), lane.coords.data(), system.getAssembledPts(), scratch);
    solution = rightHandSide;
    system.luSolve(solution.data());
    for (std::size_t o = 0; o < results.estimates.size(); ++o)
        results.estimates[o][t] = system.estimate(static_cast<int>(o), lane.points, solution.data());
    if (results.variances != nullptr)
        results.variances[t] = system.dotProduct(solution.data(), rightHandSide.data());
    if (results.driftProducts != nullptr)
        results.driftProducts[t] = system.calcDriftProduct(solution.data(), rightHandSide.data());
}

} // namespace fenn::estimation
