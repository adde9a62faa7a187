#include "estimation/CovarianceInverse.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "estimation/InverseNorm.h"
#include "estimation/ParallelRanges.h"
#include "estimation/StripStore.h"
#include "surrogatemodel_kriging/Matrix.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/kernels/CholeskyKernels.h"

namespace fenn::estimation
{

namespace
{

using kernels::maxGroupStrips;
using kernels::StripGroup;
using kernels::stripWidth;
using kernels::triangleTileRows;

constexpr std::size_t groupColumns = maxGroupStrips * stripWidth;

// Of n u / (smallest pivot): one over the smallest pivot is close to the norm of C^-1 where points that lie close
// together make it large, and rounding errors hardly ever add up as n u allows.
constexpr double largestError = 1e-7;
constexpr double unitRoundoff = 0x1p-53;

/// Columns L^-1 e_r for rows r that ascend, in groups that are zero above a row of their own. Lanes behind the last
/// row hold zeros.
class UnitColumns
{
public:
    UnitColumns(const CovarianceSystem& system_, const std::vector<std::size_t>& rows)
        : system(system_), numStrips((rows.size() + stripWidth - 1) / stripWidth), store(system.getNumRows(), numStrips)
    {
        for (std::size_t begin = 0; begin < rows.size(); begin += groupColumns)
        {
            const std::size_t count = std::min(groupColumns, rows.size() - begin);
            const std::size_t firstRow = rows[begin] / triangleTileRows * triangleTileRows;
            firstRows.push_back(firstRow);
            const StripGroup group = getGroup(firstRows.size() - 1);
            for (std::size_t s = 0; s < group.numStrips; ++s)
                std::fill_n(group.strips + group.stride * s + stripWidth * firstRow,
                            stripWidth * (system.getNumRows() - firstRow), 0.0);
            for (std::size_t c = 0; c < count; ++c)
                store.getColumn(begin + c)[stripWidth * rows[begin + c]] = 1.0;
            system.substitute(group, firstRow);
        }
    }

    std::size_t getNumGroups() const
    {
        return firstRows.size();
    }

    StripGroup getGroup(std::size_t group) const
    {
        const std::size_t firstStrip = maxGroupStrips * group;
        StripGroup strips = store.getGroup(std::min(maxGroupStrips, numStrips - firstStrip));
        strips.strips = store.getStrip(firstStrip);
        return strips;
    }

    /// Rows above are zero in the group, and undefined in its strips.
    std::size_t getFirstRow(std::size_t group) const
    {
        return firstRows[group];
    }

private:
    const CovarianceSystem& system;
    std::size_t numStrips;
    StripStore store;
    std::vector<std::size_t> firstRows;
};

} // namespace

CovarianceInverse::CovarianceInverse(const ModelParts& parts, int driftOrder, int numThreads)
    : SystemInverse(parts.getPoints().size(), numThreads),
      system(parts, driftOrder),
      rowOfPoint(parts.getPoints().size())
{
    for (std::size_t row = 0; row < rowOfPoint.size(); ++row)
        rowOfPoint[system.getPositions()[row]] = row;
}

std::unique_ptr<CovarianceInverse> CovarianceInverse::makeWhereAccurate(const ModelParts& parts, int driftOrder,
                                                                        int numThreads)
{
    std::unique_ptr<CovarianceInverse> inverse(new CovarianceInverse(parts, driftOrder, numThreads));
    CovarianceSystem& system = inverse->system;
    if (!system.findObstacle().empty() || !system.factorise(inverse->getThreads()))
        return nullptr;
    const double error = static_cast<double>(system.getNumPoints()) * unitRoundoff / system.calcSmallestPivot();
    return error <= largestError ? std::move(inverse) : nullptr;
}

std::vector<double> CovarianceInverse::solve(const std::vector<double>& values) const
{
    const StripStore store(system.getNumRows(), 1);
    std::fill_n(store.getStrip(0), stripWidth * system.getNumRows(), 0.0);
    double* column = store.getColumn(0);
    for (std::size_t i = 0; i < values.size(); ++i)
        column[stripWidth * rowOfPoint[i]] = values[i];
    system.solve(store.getGroup());
    std::vector<double> solution(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        solution[i] = -column[stripWidth * rowOfPoint[i]];
    return solution;
}

/// The same in both forms: of a column that belongs to a drift term, the points' part keeps its sign.
std::vector<std::vector<double>> CovarianceInverse::calcDriftRows() const
{
    std::vector<std::vector<double>> rows(system.getNumDriftTerms());
    const StripStore store(system.getNumRows(), 1);
    for (std::size_t begin = 0; begin < rows.size(); begin += stripWidth)
    {
        std::fill_n(store.getStrip(0), stripWidth * system.getNumRows(), 0.0);
        const std::size_t count = std::min(stripWidth, rows.size() - begin);
        for (std::size_t c = 0; c < count; ++c)
            store.getColumn(c)[stripWidth * (system.getFirstDriftRow() + begin + c)] = 1.0;
        system.solve(store.getGroup());
        for (std::size_t c = 0; c < count; ++c)
        {
            for (const std::size_t row : rowOfPoint)
                rows[begin + c].push_back(store.getColumn(c)[stripWidth * row]);
        }
    }
    return rows;
}

double CovarianceInverse::calcLogDeterminant() const
{
    return system.calcLogDeterminant();
}

double CovarianceInverse::calcReciprocalCondition() const
{
    const std::vector<double> scales(system.getNumDriftTerms(), 1.0);
    InverseNorm norm(system.getRowScales(scales), stripWidth);
    const StripStore store(system.getNumRows(), 1);
    for (int solve = 0; solve < InverseNorm::numSolves; ++solve)
    {
        norm.writeColumns(store, 0);
        system.solve(store.getGroup());
        norm.readSolutions(store, 0);
    }
    const double condition = system.calcNorm(scales) * norm.getEstimate();
    return std::isnan(condition) ? 0.0 : 1.0 / condition;
}

bool CovarianceInverse::isWellConditioned() const
{
    return true; // or makeWhereAccurate would not have made it
}

void CovarianceInverse::calcDiagonalPart(std::size_t first, std::size_t end, double* diagonal,
                                         double* driftProducts) const
{
    std::vector<std::size_t> rows(end - first);
    std::iota(rows.begin(), rows.end(), first);
    const UnitColumns columns(system, rows);
    const std::size_t firstDriftRow = system.getFirstDriftRow();
    std::size_t row = first;
    for (std::size_t g = 0; g < columns.getNumGroups(); ++g)
    {
        const StripGroup group = columns.getGroup(g);
        const std::size_t firstRow = columns.getFirstRow(g);
        const auto sumSquares = [&](std::size_t begin, std::size_t count, double* sums)
        {
            StripGroup part = group;
            part.strips += stripWidth * begin;
            kernels::sumProducts(part, part, count, sums);
        };
        double ofPoints[groupColumns];
        double ofDrift[groupColumns];
        sumSquares(firstRow, firstDriftRow - firstRow, ofPoints);
        sumSquares(firstDriftRow, system.getNumRows() - firstDriftRow, ofDrift);
        for (std::size_t c = 0; c < groupColumns && row + c < end; ++c)
            diagonal[system.getPositions()[row + c]] = ofDrift[c] - ofPoints[c];
        if (driftProducts != nullptr)
            writeDriftProducts(group, row, end, driftProducts);
        row += groupColumns;
    }
}

/// Of a group of columns L^-1 e_i, the first one that of the given row. Their drift rows R^-1 g become, with the other
/// sign, those of K^-1 e_i, which are the same in both forms: the points' part alone changes its sign.
void CovarianceInverse::writeDriftProducts(const StripGroup& group, std::size_t firstRow, std::size_t end,
                                           double* driftProducts) const
{
    const std::size_t numDriftTerms = system.getNumDriftTerms();
    std::vector<double> places(stripWidth * system.getModel().numInputVars);
    std::vector<double> scratch(places.size());
    const StripStore terms(numDriftTerms, 1);
    double products[stripWidth];
    for (std::size_t s = 0; s < group.numStrips && firstRow + stripWidth * s < end; ++s)
    {
        const std::size_t first = firstRow + stripWidth * s;
        double* const rows = group.strips + group.stride * s + stripWidth * system.getFirstDriftRow();
        system.substituteDriftBack(rows);
        system.gatherPoints(first, places.data());
        system.writeDriftTerms(places.data(), terms.getStrip(0), scratch.data());
        kernels::sumProducts({rows, 0, 1}, terms.getGroup(), numDriftTerms, products);
        for (std::size_t t = 0; t < stripWidth && first + t < end; ++t)
            driftProducts[system.getPositions()[first + t]] = -products[t];
    }
}

void CovarianceInverse::calcBlock(const std::vector<std::size_t>& points, Matrix& block) const
{
    std::vector<std::size_t> order(points.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return rowOfPoint[points[a]] < rowOfPoint[points[b]]; });
    std::vector<std::size_t> rows;
    rows.reserve(order.size());
    for (const std::size_t i : order)
        rows.push_back(rowOfPoint[points[i]]);
    const UnitColumns columns(system, rows);

    const std::size_t rowLength = kernels::roundUpToStrip(points.size());
    ElementStore products; // of columns in their order, where the row's group is not before the column's
    products.allocate(rowLength * rowLength);
    std::fill_n(products.data(), rowLength * rowLength, 0.0);
    const std::size_t firstDriftRow = system.getFirstDriftRow();
    for (std::size_t g = 0; g < columns.getNumGroups(); ++g)
    {
        for (std::size_t h = 0; h <= g; ++h)
        {
            const StripGroup later = columns.getGroup(g);
            const StripGroup earlier = columns.getGroup(h);
            double* part = products.data() + groupColumns * (rowLength * g + h);
            kernels::subtractColumnProducts(later, earlier, firstDriftRow, system.getNumRows(), part, rowLength);
            for (std::size_t i = 0; i < stripWidth * later.numStrips; ++i)
            {
                for (std::size_t j = 0; j < stripWidth * earlier.numStrips; ++j)
                    part[rowLength * i + j] = -part[rowLength * i + j];
            }
            kernels::subtractColumnProducts(later, earlier, columns.getFirstRow(g), firstDriftRow, part, rowLength);
        }
    }
    for (std::size_t i = 0; i < order.size(); ++i)
    {
        for (std::size_t j = 0; j <= i; ++j)
        {
            const double element = products.data()[rowLength * i + j];
            block.getRow(static_cast<int>(order[i]))[order[j]] = element;
            block.getRow(static_cast<int>(order[j]))[order[i]] = element;
        }
    }
}

} // namespace fenn::estimation
