#include "estimation/CovarianceSystem.h"

#include <algorithm>
#include <cmath>

#include "estimation/ParallelRanges.h"
#include "estimation/SpatialOrder.h"
#include "estimation/SystemSize.h"
#include "surrogatemodel_kriging/DriftTerms.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::estimation
{

namespace
{

using kernels::PackedTriangle;
using kernels::pointsPerBox;
using kernels::stripWidth;
using kernels::triangleTileRows;

// Below this a second thread costs more to start than it takes over.
constexpr std::size_t minSharedRows = 256;

std::vector<std::vector<double>> gather(const SurrogateModelDataBlock& block, const std::vector<SourcePointRef>& points)
{
    std::vector<std::vector<double>> columns(static_cast<std::size_t>(block.getNumInputVars()));
    for (std::size_t v = 0; v < columns.size(); ++v)
    {
        columns[v].reserve(points.size());
        for (const SourcePointRef& point : points)
            columns[v].push_back(block.getInputValueArraysForBlock(point.first)[v][point.second]);
    }
    return columns;
}

std::vector<const double*> pointersTo(const std::vector<std::vector<double>>& columns)
{
    std::vector<const double*> pointers;
    pointers.reserve(columns.size());
    for (const std::vector<double>& column : columns)
        pointers.push_back(column.data());
    return pointers;
}

} // namespace

CovarianceSystem::CovarianceSystem(const ModelParts& parts_, int driftOrder_) : parts(parts_), driftOrder(driftOrder_)
{
    const SurrogateModelDataBlock& block = parts.getDataBlock();
    scales.resize(parts.getNormalizers().size());
    model = parts.getSemivariogram().getKernelModel(scales.data());
    const std::vector<SourcePointRef>& unordered = parts.getPoints();
    points.reserve(unordered.size());
    positions = orderInSpace(gather(block, unordered), scales, pointsPerBox);
    for (const std::size_t position : positions)
        points.push_back(unordered[position]);
    coordinates = gather(block, points);

    low.resize(coordinates.size());
    high.resize(coordinates.size());
    for (std::size_t v = 0; v < coordinates.size(); ++v)
    {
        for (std::size_t begin = 0; begin < points.size(); begin += pointsPerBox)
        {
            const double* first = coordinates[v].data() + begin;
            const double* last = first + std::min(points.size() - begin, pointsPerBox);
            low[v].push_back(*std::min_element(first, last));
            high[v].push_back(*std::max_element(first, last));
        }
    }
    coordinatePointers = pointersTo(coordinates);
    lowPointers = pointersTo(low);
    highPointers = pointersTo(high);

    numDriftTerms = static_cast<std::size_t>(countDriftTerms(driftOrder, scales.size())) + 1;
    triangle.numPositive = kernels::roundUpToTile(points.size());
    triangle.numRows = triangle.numPositive + kernels::roundUpToStrip(numDriftTerms);
}

std::string CovarianceSystem::findObstacle() const
{
    if (points.size() < numDriftTerms || points.size() <= model.numInputVars)
        return "there are too few points for the covariance form";
    const double atRange = model.shapeCoefficient * model.threeRangeSquared;
    if (!(model.rangeSquared > 0.0) || !std::isfinite(atRange) || !(model.nugget >= 0.0 && model.nugget <= 1.0))
        return "the covariance form needs a range and a nugget within bounds";
    return {};
}

bool CovarianceSystem::factorise(ParallelRanges& threads)
{
    cells.allocate(PackedTriangle::sizeFor(triangle.numRows));
    workspace.allocate(kernels::choleskyWorkspaceSize(triangle.numRows));
    triangle.cells = cells.data();

    // Larger tiles first. A system too small to share is one range.
    const bool isShared = triangle.numRows >= minSharedRows;
    const std::size_t numTiles = triangle.numPositive / triangleTileRows;
    threads.run(numTiles, isShared ? 1 : numTiles,
                [&](std::size_t, std::size_t first, std::size_t end)
                {
                    for (std::size_t i = first; i < end; ++i)
                        assembleTile(numTiles - 1 - i);
                });
    assembleBorder();

    kernels::SharedCholesky shared;
    kernels::prepareSharedCholesky(shared, triangle, workspace.data());
    threads.run(isShared ? threads.getNumThreads() : 1, 1,
                [&shared](std::size_t, std::size_t, std::size_t) { kernels::workOnSharedCholesky(shared); });
    if (!shared.failed)
        return true;
    cells.allocate(0);
    return false;
}

void CovarianceSystem::assembleTile(std::size_t tile)
{
    const std::size_t firstRow = triangleTileRows * tile;
    const std::size_t numColumns = firstRow + triangleTileRows;
    for (std::size_t s = 0; s < kernels::triangleTileStrips; ++s)
        assembleStrip(firstRow + stripWidth * s, triangle.strip(tile, s), numColumns);
}

void CovarianceSystem::assembleStrip(std::size_t firstRow, double* strip, std::size_t numColumns)
{
    const std::size_t numPts = points.size();
    const std::size_t numFilled = firstRow < numPts ? std::min(numPts, numColumns) : 0;
    if (numFilled > 0)
    {
        std::vector<double> targets(stripWidth * scales.size());
        gatherPoints(firstRow, targets.data());
        kernels::evaluateCovariances(getModel(), getBoxedPoints(), 0, numFilled, targets.data(), strip);
    }
    std::fill(strip + stripWidth * numFilled, strip + stripWidth * numColumns, 0.0);
    for (std::size_t lane = 0; lane < stripWidth; ++lane)
    {
        const std::size_t row = firstRow + lane;
        for (std::size_t j = 0; row >= numPts && j < numFilled; ++j)
            strip[stripWidth * j + lane] = 0.0;
        // Never evaluated: the model gives its nugget at a zero separation.
        strip[stripWidth * row + lane] = 1.0;
    }
}

void CovarianceSystem::assembleBorder()
{
    const std::size_t first = triangle.numPositive;
    std::fill(triangle.strip(first / triangleTileRows, 0), cells.data() + PackedTriangle::sizeFor(triangle.numRows),
              0.0);
    std::vector<double> targets(stripWidth * scales.size());
    std::vector<double> scratch(targets.size());
    std::vector<double> lines(stripWidth * numDriftTerms);
    for (std::size_t begin = 0; begin < points.size(); begin += stripWidth)
    {
        gatherPoints(begin, targets.data());
        writeDriftTerms(targets.data(), lines.data(), scratch.data());
        const std::size_t count = std::min(stripWidth, points.size() - begin);
        for (std::size_t k = 0; k < numDriftTerms; ++k)
        {
            for (std::size_t t = 0; t < count; ++t)
                triangle.at(first + k, begin + t) = lines[stripWidth * k + t];
        }
    }
    for (std::size_t i = first + numDriftTerms; i < triangle.numRows; ++i)
        triangle.at(i, i) = -1.0;
}

std::size_t CovarianceSystem::getNumPoints() const
{
    return points.size();
}

std::size_t CovarianceSystem::getNumDriftTerms() const
{
    return numDriftTerms;
}

std::size_t CovarianceSystem::getNumRows() const
{
    return triangle.numRows;
}

std::size_t CovarianceSystem::getFirstDriftRow() const
{
    return triangle.numPositive;
}

const std::vector<SourcePointRef>& CovarianceSystem::getPoints() const
{
    return points;
}

const std::vector<std::size_t>& CovarianceSystem::getPositions() const
{
    return positions;
}

const std::vector<double>& CovarianceSystem::getScales() const
{
    return scales;
}

kernels::SphericalModel CovarianceSystem::getModel() const
{
    return model;
}

kernels::BoxedPoints CovarianceSystem::getBoxedPoints() const
{
    return {coordinatePointers.data(), points.size(), lowPointers.data(), highPointers.data()};
}

void CovarianceSystem::gatherPoints(std::size_t first, double* targets) const
{
    for (std::size_t v = 0; v < coordinates.size(); ++v)
    {
        for (std::size_t t = 0; t < stripWidth; ++t)
            targets[stripWidth * v + t] = coordinates[v][std::min(first + t, points.size() - 1)];
    }
}

void CovarianceSystem::writeDriftTerms(const double* targets, double* lines, double* scratch) const
{
    double* next = lines;
    if (driftOrder > 0)
        next = fenn::writeDriftTerms<stripWidth>(next, driftOrder, targets, parts.getNormalizers(),
                                                 static_cast<int>(scales.size()), scratch);
    std::fill_n(next, stripWidth, 1.0);
}

void CovarianceSystem::writeRightHandSides(const double* targets, double* strip, double* scratch) const
{
    kernels::evaluateCovariances(getModel(), getBoxedPoints(), 0, points.size(), targets, strip);
    std::fill(strip + stripWidth * points.size(), strip + stripWidth * triangle.numPositive, 0.0);
    double* drift = strip + stripWidth * triangle.numPositive;
    writeDriftTerms(targets, drift, scratch);
    std::fill(drift + stripWidth * numDriftTerms, strip + stripWidth * triangle.numRows, 0.0);
}

std::vector<double> CovarianceSystem::getRowScales(const std::vector<double>& driftScales) const
{
    std::vector<double> rowScales(triangle.numRows, 0.0);
    std::fill_n(rowScales.begin(), points.size(), 1.0);
    std::copy(driftScales.begin(), driftScales.end(),
              rowScales.begin() + static_cast<std::ptrdiff_t>(triangle.numPositive));
    return rowScales;
}

double CovarianceSystem::calcNorm(const std::vector<double>& driftScales) const
{
    std::vector<double> targets(stripWidth * scales.size());
    std::vector<double> scratch(targets.size());
    std::vector<double> covariances(stripWidth * points.size());
    std::vector<double> lines(stripWidth * numDriftTerms);
    std::vector<double> ofDrift(numDriftTerms, 0.0);
    double largest = 0.0;
    for (std::size_t begin = 0; begin < points.size(); begin += stripWidth)
    {
        gatherPoints(begin, targets.data());
        kernels::evaluateCovariances(getModel(), getBoxedPoints(), 0, points.size(), targets.data(),
                                     covariances.data());
        writeDriftTerms(targets.data(), lines.data(), scratch.data());
        double sums[stripWidth];
        std::fill_n(sums, stripWidth, model.nugget); // a point's covariance with itself is 1, not 1 - nugget
        for (std::size_t j = 0; j < points.size(); ++j)
        {
            for (std::size_t t = 0; t < stripWidth; ++t)
                sums[t] += std::fabs(covariances[stripWidth * j + t]);
        }
        for (std::size_t t = 0; t < std::min(stripWidth, points.size() - begin); ++t)
        {
            for (std::size_t k = 0; k < numDriftTerms; ++k)
            {
                const double term = std::fabs(lines[stripWidth * k + t]) / driftScales[k];
                sums[t] += term;
                ofDrift[k] += term;
            }
            largest = std::max(largest, sums[t]);
        }
    }
    for (const double sum : ofDrift)
        largest = std::max(largest, sum);
    return largest;
}

void CovarianceSystem::substitute(const kernels::StripGroup& group, std::size_t firstRow) const
{
    kernels::substituteLower(triangle, workspace.data(), group, firstRow / triangleTileRows);
}

void CovarianceSystem::substituteDriftBack(double* driftRows) const
{
    const std::size_t first = triangle.numPositive;
    for (std::size_t k = numDriftTerms; k-- > 0;)
    {
        double* const row = driftRows + stripWidth * k;
        for (std::size_t i = k + 1; i < numDriftTerms; ++i)
        {
            for (std::size_t t = 0; t < stripWidth; ++t)
                row[t] -= triangle.at(first + i, first + k) * driftRows[stripWidth * i + t];
        }
        for (std::size_t t = 0; t < stripWidth; ++t)
            row[t] /= triangle.at(first + k, first + k);
    }
}

void CovarianceSystem::solve(const kernels::StripGroup& group) const
{
    kernels::substituteLower(triangle, workspace.data(), group);
    for (std::size_t s = 0; s < group.numStrips; ++s)
    {
        double* strip = group.strips + group.stride * s;
        for (std::size_t i = stripWidth * triangle.numPositive; i < stripWidth * triangle.numRows; ++i)
            strip[i] = -strip[i];
    }
    kernels::substituteLowerTransposed(triangle, workspace.data(), group);
}

double CovarianceSystem::calcLogDeterminant() const
{
    double sum = 0.0;
    for (std::size_t i = 0; i < points.size(); ++i)
        sum += 2.0 * std::log(triangle.at(i, i));
    for (std::size_t i = triangle.numPositive; i < triangle.numPositive + numDriftTerms; ++i)
        sum += 2.0 * std::log(std::fabs(triangle.at(i, i)));
    return sum;
}

double CovarianceSystem::calcRowNorm(std::size_t i) const
{
    double sum = 0.0;
    for (std::size_t j = 0; j <= i; ++j)
        sum += triangle.at(i, j) * triangle.at(i, j);
    return std::sqrt(sum);
}

double CovarianceSystem::calcSmallestPivot() const
{
    double smallest = 1.0;
    for (std::size_t i = 0; i < points.size(); ++i)
        smallest = std::min(smallest, triangle.at(i, i) * triangle.at(i, i));
    return smallest;
}

} // namespace fenn::estimation
