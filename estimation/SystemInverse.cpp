#include "estimation/SystemInverse.h"

#include <algorithm>

#include "estimation/ParallelRanges.h"
#include "surrogatemodel_kriging/Matrix.h"

namespace fenn::estimation
{

namespace
{

// Columns of the inverse that a thread takes at a time, and how often it does so between two reports. A group of four
// strips is what the substitutions work on together.
constexpr std::size_t columnsPerPiece = 64;
constexpr std::size_t piecesPerReport = 4;

} // namespace

SystemInverse::SystemInverse(std::size_t numPoints_, int numThreads)
    : numPoints(numPoints_), threads(std::make_unique<ParallelRanges>(numThreads))
{
}

SystemInverse::~SystemInverse() = default;

std::size_t SystemInverse::getNumPoints() const
{
    return numPoints;
}

ParallelRanges& SystemInverse::getThreads() const
{
    return *threads;
}

std::vector<double> SystemInverse::calcDiagonal(const std::function<void(std::size_t numDone)>& afterSome,
                                                std::vector<double>* driftProducts) const
{
    if (driftProducts != nullptr)
        driftProducts->resize(numPoints);
    std::vector<double> diagonal(numPoints);
    const std::size_t perReport = columnsPerPiece * piecesPerReport * threads->getNumThreads();
    for (std::size_t done = 0; done < numPoints;)
    {
        const std::size_t count = std::min(perReport, numPoints - done);
        threads->run(count, columnsPerPiece,
                     [&](std::size_t, std::size_t first, std::size_t end)
                     {
                         calcDiagonalPart(done + first, done + end, diagonal.data(),
                                          driftProducts == nullptr ? nullptr : driftProducts->data());
                     });
        done += count;
        afterSome(done);
    }
    return diagonal;
}

void SystemInverse::calcBlocks(const std::vector<std::vector<std::size_t>>& groups, const UseBlock& use) const
{
    threads->run(groups.size(), 1,
                 [&](std::size_t, std::size_t group, std::size_t)
                 {
                     Matrix block;
                     block.allocate(static_cast<int>(groups[group].size()));
                     calcBlock(groups[group], block);
                     use(group, block);
                 });
}

} // namespace fenn::estimation
