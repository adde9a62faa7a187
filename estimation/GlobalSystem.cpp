#include "estimation/GlobalSystem.h"

#include <algorithm>

#include "estimation/BorderedSystem.h"
#include "estimation/StripStore.h"
#include "estimation/ThreadCount.h"
#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::estimation
{

namespace
{

using kernels::maxGroupStrips;
using kernels::StripGroup;
using kernels::stripWidth;

constexpr std::size_t groupColumns = maxGroupStrips * stripWidth;

} // namespace

/// Solves for columns of the inverse, a group of strips at a time, with the bits and failures of luSolve.
class GlobalSystem::Columns
{
public:
    explicit Columns(const GlobalSystem& owner_)
        : owner(owner_),
          system(owner_.controller->getSystem()),
          dimension(static_cast<std::size_t>(system.getDimension())),
          store(dimension, maxGroupStrips)
    {
    }

    /// Column c is that of rows[c], of at most groupColumns.
    void solve(const std::size_t* rows, std::size_t count)
    {
        const StripGroup group = store.getGroup((count + stripWidth - 1) / stripWidth);
        for (std::size_t s = 0; s < group.numStrips; ++s)
            std::fill_n(group.strips + group.stride * s, stripWidth * dimension, 0.0);
        for (std::size_t c = 0; c < count; ++c)
            store.getColumn(c)[stripWidth * owner.placeOfRow[rows[c]]] = 1.0;
        bool needsSingleSolve = system.hasTinyDiagonal();
        if (!needsSingleSolve)
        {
            system.substituteGroups({}, group);
            needsSingleSolve = system.substituteGroups(group, {});
        }
        if (needsSingleSolve)
        {
            for (std::size_t c = 0; c < count; ++c)
                solveSingly(rows[c], store.getColumn(c));
        }
    }

    double get(std::size_t row, std::size_t c) const
    {
        return store.getColumn(c)[stripWidth * row];
    }

private:
    void solveSingly(std::size_t row, double* column)
    {
        std::vector<double> solution(dimension, 0.0);
        solution[row] = 1.0;
        system.luSolve(solution.data());
        for (std::size_t i = 0; i < dimension; ++i)
            column[stripWidth * i] = solution[i];
    }

    const GlobalSystem& owner;
    const KrigingMatrix& system;
    std::size_t dimension;
    StripStore store;
};

GlobalSystem::GlobalSystem(const ModelParts& parts_, int driftOrder, int numThreads)
    : SystemInverse(parts_.getPoints().size(), numThreads),
      parts(parts_),
      controller(std::make_unique<AllPtsKrigingController>(&parts.getDataBlock(), &parts.getSemivariogram(), driftOrder,
                                                           chooseThreadCount(numThreads)))
{
    std::vector<int> rowOrder;
    controller->getSystem().calcRowOrder(rowOrder);
    placeOfRow.resize(rowOrder.size());
    for (std::size_t i = 0; i < rowOrder.size(); ++i)
        placeOfRow[static_cast<std::size_t>(rowOrder[i])] = i;
}

GlobalSystem::~GlobalSystem() = default;

std::vector<double> GlobalSystem::solve(const std::vector<double>& values) const
{
    return solveForPoints(controller->getSystem(), values);
}

std::vector<std::vector<double>> GlobalSystem::calcDriftRows() const
{
    const KrigingMatrix& system = controller->getSystem();
    const auto dimension = static_cast<std::size_t>(system.getDimension());
    std::vector<std::vector<double>> rows;
    for (std::size_t k = getNumPoints(); k < dimension; ++k)
    {
        rows.emplace_back(dimension, 0.0);
        rows.back()[k] = 1.0;
        system.luSolve(rows.back().data());
        rows.back().resize(getNumPoints());
    }
    return rows;
}

double GlobalSystem::calcLogDeterminant() const
{
    return estimation::calcLogDeterminant(controller->getSystem());
}

double GlobalSystem::calcReciprocalCondition() const
{
    return estimation::calcReciprocalCondition(controller->getSystem(), parts);
}

bool GlobalSystem::isWellConditioned() const
{
    return calcReciprocalCondition() >= smallestReciprocalCondition;
}

void GlobalSystem::calcDiagonalPart(std::size_t first, std::size_t end, double* diagonal, double* driftProducts) const
{
    const KrigingMatrix& system = controller->getSystem();
    Columns columns(*this);
    std::vector<std::size_t> rows;
    std::vector<double> border(static_cast<std::size_t>(system.getDimension()));
    std::vector<double> column(border.size());
    for (std::size_t begin = first; begin < end; begin += groupColumns)
    {
        rows.clear();
        for (std::size_t i = begin; i < std::min(end, begin + groupColumns); ++i)
            rows.push_back(i);
        columns.solve(rows.data(), rows.size());
        for (std::size_t c = 0; c < rows.size(); ++c)
        {
            diagonal[rows[c]] = columns.get(rows[c], c);
            if (driftProducts == nullptr)
                continue;
            writeDriftTerms(rows[c], border);
            for (std::size_t i = getNumPoints(); i < column.size(); ++i)
                column[i] = columns.get(i, c);
            driftProducts[rows[c]] = system.calcDriftProduct(column.data(), border.data());
        }
    }
}

/// The drift terms of a point, to the entries of a right-hand side that are theirs.
void GlobalSystem::writeDriftTerms(std::size_t point, std::vector<double>& rightHandSide) const
{
    const SurrogateModelDataBlock& block = parts.getDataBlock();
    const auto& [b, p] = parts.getPoints()[point];
    std::vector<double> place;
    for (const double* column : block.getInputValueArraysForBlock(b))
        place.push_back(column[p]);
    std::vector<double> scratch(place.size());
    controller->getSystem().buildRightHandSide(rightHandSide.data(), static_cast<int>(getNumPoints()), place,
                                               parts.getPoints(), scratch);
}

void GlobalSystem::calcBlock(const std::vector<std::size_t>& points, Matrix& block) const
{
    Columns columns(*this);
    for (std::size_t begin = 0; begin < points.size(); begin += groupColumns)
    {
        const std::size_t count = std::min(groupColumns, points.size() - begin);
        columns.solve(points.data() + begin, count);
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            for (std::size_t c = 0; c < count; ++c)
                block.getRow(static_cast<int>(i))[begin + c] = columns.get(points[i], c);
        }
    }
}

} // namespace fenn::estimation
