#include "surrogatemodel_kriging/kernels/CholeskyKernels.h"

#include <new>
#include <thread>

#include "surrogatemodel_kriging/kernels/CholeskyPlan.h"
#include "surrogatemodel_kriging/kernels/HighwayTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "surrogatemodel_kriging/kernels/CholeskyKernels.cpp"
#include "hwy/foreach_target.h"

#include "surrogatemodel_kriging/kernels/CholeskyTiles-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{

using namespace cholesky;

/// Subtracts from the rows of some tiles, in the columns of others, the products of the columns [begin, end).
void subtractBlock(const PackedTriangle& triangle, const CholeskyPlan::Tiles& rows, const CholeskyPlan::Tiles& columns,
                   std::size_t begin, std::size_t end)
{
    for (std::size_t column = columns.begin; column < columns.end; ++column)
    {
        for (std::size_t row = rows.begin > column ? rows.begin : column; row < rows.end; ++row)
        {
            for (std::size_t s = 0; s < triangle.numStripsOf(row); ++s)
                subtractColumns(triangle, column, triangle.strip(row, s), begin, end);
        }
    }
}

void negateBlock(const PackedTriangle& triangle, const CholeskyPlan::Tiles& rows, const CholeskyPlan::Tiles& columns)
{
    const Tag d;
    for (std::size_t row = rows.begin; row < rows.end; ++row)
    {
        std::size_t endColumn = kTileRows * (columns.end < row + 1 ? columns.end : row + 1);
        endColumn = endColumn < triangle.numRows ? endColumn : triangle.numRows;
        for (std::size_t s = 0; s < triangle.numStripsOf(row); ++s)
        {
            double* strip = triangle.strip(row, s);
            for (std::size_t i = stripWidth * kTileRows * columns.begin; i < stripWidth * endColumn; i += kLanes)
                hn::Store(hn::Neg(hn::Load(d, strip + i)), d, strip + i);
        }
    }
}

/// The columns of a block in its own rows and in those below, products of earlier blocks being subtracted already:
/// factorises the tiles on the diagonal, where the rows are the block's own, and solves with them for the other rows.
bool finishBlock(const PackedTriangle& triangle, double* reciprocals, const CholeskyPlan::Tiles& rows,
                 const CholeskyPlan::Tiles& columns)
{
    for (std::size_t tile = columns.begin; tile < columns.end; ++tile)
    {
        subtractBlock(triangle, rows, {tile, tile + 1}, kTileRows * columns.begin, kTileRows * tile);
        std::size_t row = rows.begin;
        if (row <= tile)
        {
            if (!factoriseTile(triangle, tile, reciprocals))
                return false;
            row = tile + 1;
        }
        for (; row < rows.end; ++row)
        {
            for (std::size_t s = 0; s < triangle.numStripsOf(row); ++s)
                solveTile(triangle, tile, reciprocals, triangle.strip(row, s), triangleTileStrips);
        }
    }
    return true;
}

// Tiles of rows and columns that a substitution works on at a time: a block of the strips and one tile of factors then
// stay in the second-level cache.
constexpr std::size_t kBlockTiles = 8;

void substituteLower(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group,
                     std::size_t firstTile)
{
    const std::size_t numTiles = triangle.numTiles();
    for (std::size_t first = firstTile; first < numTiles; first += kBlockTiles)
    {
        const std::size_t end = first + kBlockTiles < numTiles ? first + kBlockTiles : numTiles;
        for (std::size_t k = firstTile; k < first; k += kBlockTiles)
        {
            for (std::size_t tile = first; tile < end; ++tile)
            {
                for (std::size_t s = 0; s < group.numStrips; ++s)
                    subtractColumns(triangle, tile, group.strips + group.stride * s, kTileRows * k,
                                    kTileRows * (k + kBlockTiles));
            }
        }
        for (std::size_t tile = first; tile < end; ++tile)
        {
            for (std::size_t s = 0; s < group.numStrips; ++s)
            {
                double* strip = group.strips + group.stride * s;
                subtractColumns(triangle, tile, strip, kTileRows * first, kTileRows * tile);
                solveTile(triangle, tile, reciprocals, strip, triangle.numStripsOf(tile));
            }
        }
    }
}

/// Eight rows of the transposed substitution whose products of later rows are subtracted already; factors is the
/// strip's line of their first column.
HWY_INLINE void solveCornerTransposed(const double* HWY_RESTRICT factors, const double* HWY_RESTRICT reciprocals,
                                      double* lines)
{
    const Tag d;
    for (std::size_t v = 0; v < stripWidth; v += kLanes)
    {
        Vec sums[stripWidth];
        FENN_UNROLL
        for (std::size_t i = 0; i < stripWidth; ++i)
            sums[i] = hn::Load(d, lines + stripWidth * i + v);
        FENN_UNROLL
        for (std::size_t k = stripWidth; k-- > 0;)
        {
            sums[k] = hn::Mul(sums[k], hn::Set(d, reciprocals[k]));
            FENN_UNROLL
            for (std::size_t i = 0; i < k; ++i)
                sums[i] = hn::Sub(sums[i], hn::Mul(hn::Set(d, factors[stripWidth * i + k]), sums[k]));
        }
        FENN_UNROLL
        for (std::size_t i = 0; i < stripWidth; ++i)
            hn::Store(sums[i], d, lines + stripWidth * i + v);
    }
}

/// line(i) -= factors(i, k) * solved(k) for k descending in [0, 8), for each line i of [0, count).
HWY_NOINLINE void subtractSolvedRows(const double* HWY_RESTRICT factors, const double* HWY_RESTRICT solved,
                                     double* HWY_RESTRICT lines, std::size_t count)
{
    const Tag d;
    for (std::size_t v = 0; v < stripWidth; v += kLanes)
    {
        Vec rows[stripWidth];
        FENN_UNROLL
        for (std::size_t k = 0; k < stripWidth; ++k)
            rows[k] = hn::Load(d, solved + stripWidth * k + v);
        for (std::size_t i = 0; i < count; ++i)
        {
            Vec sum = hn::Load(d, lines + stripWidth * i + v);
            FENN_UNROLL
            for (std::size_t k = stripWidth; k-- > 0;)
                sum = hn::Sub(sum, hn::Mul(hn::Set(d, factors[stripWidth * i + k]), rows[k]));
            hn::Store(sum, d, lines + stripWidth * i + v);
        }
    }
}

void substituteLowerTransposed(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group)
{
    for (std::size_t row = triangle.numRows; row > 0;)
    {
        row -= stripWidth;
        const std::size_t tile = row / kTileRows;
        const double* factors = triangle.strip(tile, row % kTileRows / stripWidth);
        for (std::size_t s = 0; s < group.numStrips; ++s)
        {
            double* strip = group.strips + group.stride * s;
            solveCornerTransposed(factors + stripWidth * row, reciprocals + row, strip + stripWidth * row);
            subtractSolvedRows(factors, strip + stripWidth * row, strip, row);
        }
    }
}

/// The lines of a tile in a block of rows.
struct BlockLines
{
    double* cells;
    std::size_t rowLength;

    double* at(std::size_t i) const
    {
        return cells + rowLength * i;
    }
    void prefetchNext(std::size_t) const {}
};

void subtractColumnProducts(const StripGroup& a, const StripGroup& b, std::size_t begin, std::size_t end, double* block,
                            std::size_t rowLength)
{
    for (std::size_t row = 0; row < a.numStrips; row += triangleTileStrips)
    {
        const std::size_t numLeft = a.numStrips - row;
        const std::size_t numRows = stripWidth * (numLeft < triangleTileStrips ? numLeft : triangleTileStrips);
        for (std::size_t column = 0; column < b.numStrips; ++column)
            updateTile(BlockLines{block + stripWidth * (rowLength * row + column), rowLength},
                       a.strips + a.stride * row + stripWidth * begin, a.stride,
                       b.strips + b.stride * column + stripWidth * begin, end - begin, numRows);
    }
}

} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace fenn::kernels
{

namespace
{

HWY_EXPORT(subtractBlock);
HWY_EXPORT(negateBlock);
HWY_EXPORT(finishBlock);
HWY_EXPORT(substituteLower);
HWY_EXPORT(substituteLowerTransposed);
HWY_EXPORT(subtractColumnProducts);

/// Number of block columns that are done in a block of rows.
using Progress = std::atomic<std::size_t>;
static_assert(sizeof(Progress) <= sizeof(double));

/// One thread's view of a shared factorisation.
class CholeskyPiece
{
public:
    explicit CholeskyPiece(SharedCholesky& shared_)
        : shared(shared_),
          triangle(shared_.triangle),
          plan(triangle),
          progress(std::launder(reinterpret_cast<Progress*>(shared_.workspace + triangle.numRows)))
    {
    }

    void work()
    {
        while (!shared.failed.load(std::memory_order_relaxed))
        {
            const CholeskyPlan::Task task = plan.task(shared.nextTask.fetch_add(1, std::memory_order_relaxed));
            if (task.column == plan.numBlocks)
                return;
            workOn(task);
        }
    }

private:
    void workOn(const CholeskyPlan::Task& task)
    {
        const CholeskyPlan::Tiles rows = plan.block(task.row);
        const CholeskyPlan::Tiles columns = plan.block(task.column);
        for (std::size_t k = 0; k < task.column; ++k)
        {
            waitFor(task.row, k);
            waitFor(task.column, k);
            if (shared.failed.load(std::memory_order_relaxed))
                return;
            const CholeskyPlan::Tiles earlier = plan.block(k);
            if (k == plan.numPositiveBlocks)
                HWY_DYNAMIC_DISPATCH(negateBlock)(triangle, rows, columns);
            HWY_DYNAMIC_DISPATCH(subtractBlock)
            (triangle, rows, columns, triangleTileRows * earlier.begin, triangleTileRows * earlier.end);
        }
        if (task.column == plan.numPositiveBlocks)
            HWY_DYNAMIC_DISPATCH(negateBlock)(triangle, rows, columns);
        if (task.row != task.column)
            waitFor(task.column, task.column);
        if (shared.failed.load(std::memory_order_relaxed))
            return;
        if (HWY_DYNAMIC_DISPATCH(finishBlock)(triangle, shared.workspace, rows, columns))
            progress[task.row].store(task.column + 1, std::memory_order_release);
        else
            shared.failed.store(true, std::memory_order_relaxed);
    }

    // What is waited for is being done by a running thread and takes some milliseconds at most, far less than putting
    // this thread to sleep and waking it for every block would cost altogether. Yielding helps where there are more
    // threads than processors.
    void waitFor(std::size_t row, std::size_t column) const
    {
        for (int spins = 0; progress[row].load(std::memory_order_acquire) <= column; ++spins)
        {
            if (shared.failed.load(std::memory_order_relaxed))
                return;
            if (spins < 4096)
                hwy::Pause();
            else
                std::this_thread::yield();
        }
    }

    SharedCholesky& shared;
    const PackedTriangle triangle;
    const CholeskyPlan plan;
    Progress* const progress;
};

} // namespace

std::size_t choleskyWorkspaceSize(std::size_t numRows)
{
    return numRows + roundUpToTile(numRows) / triangleTileRows; // no more blocks than tiles
}

bool factoriseCholesky(const PackedTriangle& triangle, double* workspace)
{
    SharedCholesky alone;
    prepareSharedCholesky(alone, triangle, workspace);
    workOnSharedCholesky(alone);
    return !alone.failed.load(std::memory_order_relaxed);
}

void prepareSharedCholesky(SharedCholesky& shared, const PackedTriangle& triangle, double* workspace)
{
    shared.triangle = triangle;
    shared.workspace = workspace;
    const CholeskyPlan plan(triangle);
    for (std::size_t block = 0; block < plan.numBlocks; ++block)
        new (workspace + triangle.numRows + block) Progress(0);
}

void workOnSharedCholesky(SharedCholesky& shared)
{
    CholeskyPiece(shared).work();
}

void substituteLower(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group,
                     std::size_t firstTile)
{
    HWY_DYNAMIC_DISPATCH(substituteLower)(triangle, reciprocals, group, firstTile);
}

void substituteLowerTransposed(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group)
{
    HWY_DYNAMIC_DISPATCH(substituteLowerTransposed)(triangle, reciprocals, group);
}

void subtractColumnProducts(const StripGroup& a, const StripGroup& b, std::size_t begin, std::size_t end, double* block,
                            std::size_t rowLength)
{
    HWY_DYNAMIC_DISPATCH(subtractColumnProducts)(a, b, begin, end, block, rowLength);
}

} // namespace fenn::kernels

#endif
