#include "surrogatemodel_kriging/kernels/LuKernels.h"

#include <new>
#include <thread>

#include "surrogatemodel_kriging/kernels/HighwayTargets.h"
#include "surrogatemodel_kriging/kernels/LuPlan.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "surrogatemodel_kriging/kernels/LuKernels.cpp"
#include "hwy/foreach_target.h"

#include "surrogatemodel_kriging/kernels/LuPanel-inl.h"
#include "surrogatemodel_kriging/kernels/LuSmall-inl.h"
#include "surrogatemodel_kriging/kernels/LuTrailingUpdate-inl.h"

HWY_BEFORE_NAMESPACE();
namespace fenn::kernels
{
namespace HWY_NAMESPACE
{

using namespace lu;

std::size_t getMaxSmallRows()
{
    return maxSmallRows(kUnit);
}

template <std::size_t kStrips = 1>
bool factoriseByStrips(double** rows, std::size_t n, int* pivots, double* cells, double* spareRow)
{
    if constexpr (kStrips * stripWidth < maxSmallRows(kUnit))
    {
        if (n > kStrips * stripWidth)
            return factoriseByStrips<kStrips + 1>(rows, n, pivots, cells, spareRow);
    }
    return SmallLu<kStrips>(rows, n, cells, spareRow).factorise(pivots);
}

bool factoriseSmallMatrix(double** rows, std::size_t n, int* pivots, double* cells, double* spareRow)
{
    return factoriseByStrips(rows, n, pivots, cells, spareRow);
}

bool scaleSomeRows(double* const* rows, std::size_t n, std::size_t begin, std::size_t end, double* scale)
{
    return scaleRows(rows, n, begin, end, scale);
}

/// Factorises a panel, exchanging rows in the row table, and keeps the row table as it is then for the updates.
void factorisePanelOfMatrix(const LuPlan& plan, double** rows, int* pivots, double* workspace, std::size_t index)
{
    const std::size_t first = plan.firstColumn(index);
    const std::size_t numRows = plan.numRows - first;
    Panel panel{};
    panel.cells = workspace + plan.panelOffset(index);
    panel.columnStride = plan.columnStride;
    panel.numRows = numRows;
    panel.numColumns = plan.firstColumn(index + 1) - first;
    panel.rows = rows + first;
    panel.scale = workspace + plan.scaleOffset() + first;
    panel.pivots = pivots + first;
    panel.firstRow = static_cast<int>(first);
    panel.strips = workspace + plan.triangleOffset();

    packPanel(panel, first);
    factorisePanel(panel, 0, panel.numColumns);
    unpackPanel(panel, first);

    auto** panelRows = reinterpret_cast<double**>(workspace + plan.panelRowsOffset(index));
    std::copy(panel.rows, panel.rows + numRows, panelRows);
}

void updateColumns(const LuPlan& plan, double* workspace, const LuPlan::Task& task, std::size_t piece)
{
    const std::size_t first = plan.firstColumn(task.index);
    const FinishedPanel panel{reinterpret_cast<double**>(workspace + plan.panelRowsOffset(task.index)),
                              plan.numRows - first, workspace + plan.panelOffset(task.index), plan.columnStride,
                              plan.width};
    updateColumnsBeside(panel, plan.chunkBegin(task.firstChunk), plan.chunkBegin(task.endChunk),
                        workspace + plan.updateOffset(piece));
}

} // namespace HWY_NAMESPACE
} // namespace fenn::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace fenn::kernels
{

namespace
{

HWY_EXPORT(getMaxSmallRows);
HWY_EXPORT(factoriseSmallMatrix);
HWY_EXPORT(scaleSomeRows);
HWY_EXPORT(factorisePanelOfMatrix);
HWY_EXPORT(updateColumns);

using Progress = std::atomic<std::size_t>;
static_assert(sizeof(Progress) <= sizeof(double));

bool isSmall(std::size_t n)
{
    return n <= HWY_DYNAMIC_DISPATCH(getMaxSmallRows)();
}

/// One thread's view of a shared factorisation.
class Piece
{
public:
    Piece(SharedLu& shared_, std::size_t index_)
        : shared(shared_),
          index(index_),
          plan(shared_.n, shared_.maxPieces),
          progress(std::launder(reinterpret_cast<Progress*>(shared_.workspace + plan.progressOffset())))
    {
    }

    void work()
    {
        while (!shared.singular.load(std::memory_order_relaxed))
        {
            const LuPlan::Task task = plan.task(shared.nextTask.fetch_add(1, std::memory_order_relaxed));
            if (task.work == LuPlan::Work::nothing)
                return;
            if (task.work == LuPlan::Work::scaleRows)
                scale(task.index);
            else if (task.work == LuPlan::Work::factorisePanel)
                factorise(task.index);
            else
                update(task);
        }
    }

private:
    void scale(std::size_t part)
    {
        const std::size_t begin = part * LuPlan::kRowsPerScalePart;
        const std::size_t end = std::min(shared.n, begin + LuPlan::kRowsPerScalePart);
        if (HWY_DYNAMIC_DISPATCH(scaleSomeRows)(shared.rows, shared.n, begin, end,
                                                shared.workspace + plan.scaleOffset()))
            shared.numScaledParts.fetch_add(1, std::memory_order_release);
        else
            shared.singular.store(true, std::memory_order_relaxed);
    }

    void factorise(std::size_t panel)
    {
        waitFor([&] { return shared.numScaledParts.load(std::memory_order_acquire) == plan.numScaleParts(); });
        for (std::size_t chunk = 2 * panel; chunk < plan.numChunks(); ++chunk)
        {
            // Its own columns have had all earlier panels; of the others, those that still read the buffer that this
            // panel goes to.
            const std::size_t needed = chunk < 2 * panel + 2 ? panel : panel - std::min<std::size_t>(panel, 1);
            waitFor([&] { return progress[chunk].load(std::memory_order_acquire) >= needed; });
        }
        if (shared.singular.load(std::memory_order_relaxed))
            return;
        HWY_DYNAMIC_DISPATCH(factorisePanelOfMatrix)(plan, shared.rows, shared.pivots, shared.workspace, panel);
        shared.numPanels.store(panel + 1, std::memory_order_release);
    }

    void update(const LuPlan::Task& task)
    {
        waitFor([&] { return shared.numPanels.load(std::memory_order_acquire) > task.index; });
        for (std::size_t chunk = task.firstChunk; chunk < task.endChunk; ++chunk)
            waitFor([&] { return progress[chunk].load(std::memory_order_acquire) == task.index; });
        if (shared.singular.load(std::memory_order_relaxed))
            return;
        HWY_DYNAMIC_DISPATCH(updateColumns)(plan, shared.workspace, task, index);
        for (std::size_t chunk = task.firstChunk; chunk < task.endChunk; ++chunk)
            progress[chunk].store(task.index + 1, std::memory_order_release);
    }

    // What is waited for is being done by a running thread and takes some milliseconds at most, far less than putting
    // this thread to sleep and waking it for every panel would cost altogether. Yielding helps where there are more
    // threads than processors.
    template <class Condition>
    void waitFor(const Condition& condition) const
    {
        for (int spins = 0; !condition() && !shared.singular.load(std::memory_order_relaxed); ++spins)
        {
            if (spins < 4096)
                hwy::Pause();
            else
                std::this_thread::yield();
        }
    }

    SharedLu& shared;
    const std::size_t index;
    const LuPlan plan;
    Progress* const progress;
};

} // namespace

std::size_t luWorkspaceSize(std::size_t n, std::size_t numPieces)
{
    return LuPlan(n, numPieces).size();
}

bool factoriseLu(double** rows, std::size_t n, int* pivots, double* workspace)
{
    SharedLu alone;
    prepareSharedLu(alone, rows, n, pivots, workspace, 1);
    workOnSharedLu(alone);
    return !alone.singular.load(std::memory_order_relaxed);
}

void prepareSharedLu(SharedLu& shared, double** rows, std::size_t n, int* pivots, double* workspace,
                     std::size_t numPieces)
{
    shared.rows = rows;
    shared.n = n;
    shared.pivots = pivots;
    shared.workspace = workspace;
    shared.maxPieces = isSmall(n) ? std::min<std::size_t>(n, 1) : numPieces;
    const LuPlan plan(n, numPieces);
    for (std::size_t chunk = 0; chunk < plan.numChunks(); ++chunk)
        new (workspace + plan.progressOffset() + chunk) Progress(0);
}

void workOnSharedLu(SharedLu& shared)
{
    const std::size_t piece = shared.numPieces.fetch_add(1, std::memory_order_relaxed);
    if (piece >= shared.maxPieces)
        return;
    if (isSmall(shared.n))
    {
        const LuPlan plan(shared.n, 1);
        const bool regular = HWY_DYNAMIC_DISPATCH(factoriseSmallMatrix)(shared.rows, shared.n, shared.pivots,
                                                                        shared.workspace + plan.panelOffset(0),
                                                                        shared.workspace + plan.spareRowOffset());
        shared.singular.store(!regular, std::memory_order_relaxed);
        return;
    }
    Piece(shared, piece).work();
}

} // namespace fenn::kernels

#endif
