#ifndef FENN_KERNELS_LU_PLAN_H
#define FENN_KERNELS_LU_PLAN_H

#include <algorithm>
#include <cstddef>

#include "surrogatemodel_kriging/kernels/Strips.h"

namespace fenn::kernels
{

/// How a matrix of n rows is cut, which work follows which, and where everything lies in the workspace.
///
/// Columns form panels of one width, the last one what is left. When panel p's turn comes, its rows are cut likewise:
///
///     +-----+---------+
///     | A11 |   A12   |   1. panel              A11 over A21, all rows from its diagonal down, becomes
///     +-----+---------+                         L11 and U11 over L21; rows are exchanged
///     |     |         |   2. triangular solve   A12 becomes U12 with L11 U12 = A12
///     | A21 |   A22   |   3. trailing update    A22 becomes A22 - L21 U12
///     |     |         |
///     +-----+---------+   and A22 holds the panels to come.
///
/// Each element's products are subtracted in ascending order all the same, for panels follow each other in that order.
///
/// The columns of A12 and A22 are cut into chunks, two to a panel. The work is one list that pieces take from in order:
/// parts of the rows to scale; panel 0; then for each panel p the solve and the update of one chunk after the other,
/// with the factorisation of panel p + 1 among them. Whatever a task waits for stands before it in the list, so the
/// first unfinished one can always go on.
class LuPlan
{
public:
    enum class Work
    {
        scaleRows,
        factorisePanel,
        updateChunks,
        nothing
    };

    struct Task
    {
        Work work;
        std::size_t index; // part of the rows, panel, or the panel whose products are subtracted
        std::size_t firstChunk;
        std::size_t endChunk;
    };

    LuPlan(std::size_t n, std::size_t maxPieces)
        : numRows(n),
          numPieces(maxPieces),
          width(chooseWidth(n)),
          numPanels((n + width - 1) / width),
          // An odd number of strips' lines from one strip to the next spreads a column over all sets of the caches.
          columnStride(width % (2 * stripWidth) == 0 ? width + stripWidth : width),
          numBuffers(maxPieces > 1 ? 2 : 1)
    {
    }

    std::size_t firstColumn(std::size_t panel) const
    {
        return std::min(numRows, panel * width);
    }

    std::size_t chunkBegin(std::size_t chunk) const
    {
        return std::min(numRows, chunk / 2 * width + chunk % 2 * roundUpToStrip(width / 2));
    }

    std::size_t numChunks() const
    {
        return 2 * numPanels;
    }

    std::size_t numScaleParts() const
    {
        return (numRows + kRowsPerScalePart - 1) / kRowsPerScalePart;
    }

    Task task(std::size_t number) const
    {
        if (number < numScaleParts())
            return {Work::scaleRows, number, 0, 0};
        number -= numScaleParts();
        if (number == 0)
            return {Work::factorisePanel, 0, 0, 0};
        --number;
        for (std::size_t panel = 0; panel + 1 < numPanels; ++panel)
        {
            const std::size_t firstChunk = 2 * (panel + 1);
            // A piece alone takes all columns at once: the longer the row of tiles, the better its loads are hidden.
            const std::size_t step = numPieces > 1 ? 1 : numChunks() - firstChunk;
            const std::size_t numUpdates = (numChunks() - firstChunk) / step;
            // The next panel needs its own two chunks. Other pieces get something in between, so that they are done
            // when its factorisation is taken.
            const std::size_t numAhead = std::min(numUpdates, 1 + numPieces);
            if (number == numAhead)
                return {Work::factorisePanel, panel + 1, 0, 0};
            if (number <= numUpdates)
            {
                const std::size_t chunk = firstChunk + step * (number < numAhead ? number : number - 1);
                return {Work::updateChunks, panel, chunk, chunk + step};
            }
            number -= numUpdates + 1;
        }
        return {Work::nothing, 0, 0, 0};
    }

    // Offsets in doubles; each part starts on a line of the cache.

    std::size_t scaleOffset() const
    {
        return 0;
    }

    std::size_t spareRowOffset() const
    {
        return scaleOffset() + roundUpToStrip(numRows);
    }

    /// Strips of columns beside a triangle inside a panel.
    std::size_t triangleOffset() const
    {
        return spareRowOffset() + roundUpToStrip(numRows);
    }

    std::size_t panelOffset(std::size_t panel) const
    {
        return triangleOffset() + width * width + panel % numBuffers * roundUpToStrip(numRows) * columnStride;
    }

    /// The row table as the panel left it.
    std::size_t panelRowsOffset(std::size_t panel) const
    {
        return panelOffset(0) + numBuffers * roundUpToStrip(numRows) * columnStride +
               panel % numBuffers * roundUpToStrip(numRows);
    }

    /// Number of panels subtracted from each chunk, an atomic each.
    std::size_t progressOffset() const
    {
        return panelRowsOffset(0) + numBuffers * roundUpToStrip(numRows);
    }

    /// The rows beside a panel's triangle, in strips of columns, for one update.
    std::size_t updateOffset(std::size_t piece) const
    {
        const std::size_t numColumns = numPieces > 1 ? width / 2 : numRows - firstColumn(1);
        return progressOffset() + roundUpToStrip(numChunks()) + piece * width * roundUpToStrip(numColumns);
    }

    std::size_t size() const
    {
        return updateOffset(numPanels > 1 ? numPieces : 0);
    }

    const std::size_t numRows;
    const std::size_t numPieces;
    const std::size_t width;
    const std::size_t numPanels;
    const std::size_t columnStride;
    const std::size_t numBuffers;

    static constexpr std::size_t kRowsPerScalePart = 128;

private:
    // Widths by measurement on Zen 4: the wider, the less often each element is loaded; the narrower, the less work in
    // panels and triangles, which run at three quarters of the tiles' speed. On a Xeon of larger caches (48 KB, 2 MB)
    // widths from 96 to 256 differ by less than repeats do, at 1000 rows as at 4000.
    static std::size_t chooseWidth(std::size_t n)
    {
        const std::size_t widest = n <= 384 ? 96 : n <= 1400 ? 128 : 256;
        const std::size_t count = n <= widest + stripWidth ? 1 : (n - stripWidth + widest - 1) / widest;
        return std::max(stripWidth, roundUpToStrip((n + count - 1) / count));
    }
};

} // namespace fenn::kernels

#endif
