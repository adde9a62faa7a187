#include "surrogatemodel_kriging/BatchEstimator.h"

#include <algorithm>
#include <cstdint>

namespace fenn
{

namespace
{

using kernels::maxGroupStrips;
using kernels::stripWidth;

constexpr int laneCount = static_cast<int>(stripWidth);
constexpr int groupTargets = static_cast<int>(maxGroupStrips * stripWidth);

std::size_t toIndex(int i)
{
    return static_cast<std::size_t>(i);
}

/// Doubles from one strip to the next: an odd number of cache lines, so that equal rows of a group's strips fall into
/// different sets of the cache.
std::size_t stripStride(std::size_t dimension)
{
    return stripWidth * (dimension | 1);
}

std::size_t numStripsFor(int numTargets)
{
    return toIndex(numTargets / laneCount) + (numTargets % laneCount == 0 ? 0 : 1); // of up to as many as an int counts
}

/// Where entry 0 of a target of a group stands; the next ones follow stripWidth apart.
double* laneOf(const kernels::StripGroup& group, int t)
{
    return group.strips + group.stride * toIndex(t / laneCount) + toIndex(t % laneCount);
}

/// The entries of a group's targets from this one on.
kernels::StripGroup fromRow(kernels::StripGroup group, std::size_t row)
{
    group.strips += stripWidth * row;
    return group;
}

} // namespace

BatchEstimator::BatchEstimator(const KrigingMatrix& krigingMatrix_, const BatchInputs& inputs_, bool wantsVariances_,
                               int maxTargets)
    : krigingMatrix(krigingMatrix_),
      inputs(inputs_),
      dimension(toIndex(krigingMatrix_.getDimension())),
      wantsVariances(wantsVariances_),
      hasTinyDiagonal(krigingMatrix_.hasTinyDiagonal()),
      lanes(inputs_.points.getNumInputVars() * stripWidth),
      target(inputs_.points.getNumInputVars()),
      column(dimension),
      scratch(inputs_.points.getNumInputVars() * stripWidth),
      sums(inputs_.outputs.size() * maxGroupStrips * stripWidth)
{
    layOutGroups(maxTargets);
}

void BatchEstimator::layOutGroups(int maxTargets)
{
    constexpr std::size_t alignment = 64 / sizeof(double);
    const std::size_t stride = stripStride(dimension);
    const std::size_t numStrips = std::min(numStripsFor(maxTargets), maxGroupStrips);
    const std::size_t numGroups = maxTargets > groupTargets ? 2 : 1;
    stripStore.resize(2 * numGroups * numStrips * stride + alignment);

    const auto address = reinterpret_cast<std::uintptr_t>(stripStore.data()) / sizeof(double);
    double* next = stripStore.data() + (alignment - address % alignment) % alignment;
    for (std::size_t g = 0; g < numGroups; ++g)
    {
        groups[g].rightHandSides = {next, stride, 0};
        groups[g].solutions = {next + numStrips * stride, stride, 0};
        next += 2 * numStrips * stride;
    }
}

void BatchEstimator::setDriftProducts(double* driftProducts_)
{
    driftProducts = driftProducts_;
}

void BatchEstimator::evaluate(const Arrays& targetCoords, int first, int count, const Arrays& values,
                              const Arrays& variances)
{
    Group none;
    Group* previous = &none;
    for (int done = 0; done < count;)
    {
        Group& current = previous == &groups[0] ? groups[1] : groups[0];
        current.firstTarget = first + done;
        current.numTargets = std::min(count - done, groupTargets);
        done += current.numTargets;
        try
        {
            fill(current, targetCoords);
        }
        catch (...)
        {
            // The targets before the one that could not be evaluated get their values.
            permute(current);
            complete(*previous, current, values, variances);
            complete(current, none, values, variances);
            throw;
        }
        permute(current);
        complete(*previous, current, values, variances);
        previous = &current;
    }
    complete(*previous, none, values, variances);
}

void BatchEstimator::fill(Group& group, const Arrays& targetCoords)
{
    if (!krigingMatrix.evaluatesInBulk())
    {
        fillSingly(group, targetCoords);
        return;
    }
    for (int first = 0; first < group.numTargets; first += laneCount)
    {
        for (std::size_t v = 0; v < inputs.points.getNumInputVars(); ++v)
        {
            // Lanes without a target repeat the last one; their results are discarded.
            for (int t = 0; t < laneCount; ++t)
                lanes[v * stripWidth + toIndex(t)] =
                    targetCoords[v][group.firstTarget + std::min(first + t, group.numTargets - 1)];
        }
        krigingMatrix.buildRightHandSides(laneOf(group.rightHandSides, first), lanes.data(), inputs.points, scratch);
    }
}

void BatchEstimator::fillSingly(Group& group, const Arrays& targetCoords)
{
    const int numTargets = group.numTargets;
    for (int t = 0; t < numTargets; ++t)
    {
        group.numTargets = t; // should this one throw
        for (std::size_t v = 0; v < target.size(); ++v)
            target[v] = targetCoords[v][group.firstTarget + t];
        krigingMatrix.buildRightHandSide(column.data(), target.data(), inputs.points, scratch);
        double* lane = laneOf(group.rightHandSides, t);
        for (std::size_t j = 0; j < dimension; ++j)
            lane[j * stripWidth] = column[j];
    }
    group.numTargets = numTargets;
}

void BatchEstimator::permute(Group& group)
{
    group.rightHandSides.numStrips = numStripsFor(group.numTargets);
    group.solutions.numStrips = group.rightHandSides.numStrips;
    kernels::permuteRows(inputs.rowOrder.data(), dimension, group.rightHandSides, group.solutions);

    // The single solve skips a right-hand side's leading zeros, which with an infinite or NaN factor, or a zero of
    // negative sign, is not the same as multiplying them.
    group.needsSingleSolve = hasTinyDiagonal;
    for (int t = 0; t < group.numTargets; ++t)
        group.needsSingleSolve = group.needsSingleSolve || *laneOf(group.solutions, t) == 0.0;
}

void BatchEstimator::complete(Group& group, const Group& next, const Arrays& values, const Arrays& variances)
{
    const bool hasOverflow = krigingMatrix.substituteGroups(group.solutions, next.solutions);
    if (hasOverflow || group.needsSingleSolve)
        solveSingly(group, values, variances);
    else
        write(group, values, variances);
}

void BatchEstimator::write(const Group& group, const Arrays& values, const Arrays& variances)
{
    const std::size_t rowLength = group.solutions.numStrips * stripWidth;
    if (rowLength == 0)
        return;
    kernels::sumWeighted(group.solutions, inputs.points.getNumPts(), inputs.outputs.data(), inputs.isCentred.get(),
                         inputs.outputs.size(), sums.data());
    for (std::size_t o = 0; o < inputs.outputs.size(); ++o)
    {
        const double* sum = sums.data() + o * rowLength;
        double* target_ = values[o] + group.firstTarget;
        for (std::size_t t = 0; t < toIndex(group.numTargets); ++t)
            target_[t] = inputs.isCentred[o] ? sum[t] + inputs.references[o] : sum[t];
    }
    if (wantsVariances)
    {
        kernels::sumProducts(group.solutions, group.rightHandSides, dimension, productSums.data());
        for (std::size_t o = 0; o < inputs.outputs.size(); ++o)
            std::copy_n(productSums.data(), group.numTargets, variances[o] + group.firstTarget);
    }
    if (driftProducts != nullptr)
    {
        const std::size_t numPts = inputs.points.getNumPts();
        kernels::sumProducts(fromRow(group.solutions, numPts), fromRow(group.rightHandSides, numPts),
                             dimension - numPts, productSums.data());
        std::copy_n(productSums.data(), group.numTargets, driftProducts + group.firstTarget);
    }
}

void BatchEstimator::solveSingly(const Group& group, const Arrays& values, const Arrays& variances)
{
    for (int t = 0; t < group.numTargets; ++t)
    {
        const double* rightHandSide = laneOf(group.rightHandSides, t);
        for (std::size_t j = 0; j < dimension; ++j)
            column[j] = rightHandSide[j * stripWidth];
        krigingMatrix.luSolve(column.data());

        const auto sumFrom = [&](std::size_t first)
        {
            double sum = column[first] * rightHandSide[first * stripWidth];
            for (std::size_t j = first + 1; j < dimension; ++j)
                sum += column[j] * rightHandSide[j * stripWidth];
            return sum;
        };
        const double variance = sumFrom(0);
        if (driftProducts != nullptr)
            driftProducts[group.firstTarget + t] = sumFrom(inputs.points.getNumPts());
        for (std::size_t o = 0; o < inputs.outputs.size(); ++o)
        {
            double sum = column[0] * inputs.outputs[o][0];
            if (inputs.isCentred[o])
                sum = 0.0 + sum;
            for (std::size_t j = 1; j < inputs.points.getNumPts(); ++j)
                sum += column[j] * inputs.outputs[o][j];
            values[o][group.firstTarget + t] = inputs.isCentred[o] ? sum + inputs.references[o] : sum;
            if (wantsVariances)
                variances[o][group.firstTarget + t] = variance;
        }
    }
}

} // namespace fenn
