#ifndef FENN_KERNELS_LU_KERNELS_H
#define FENN_KERNELS_LU_KERNELS_H

#include <atomic>
#include <cstddef>

namespace fenn::kernels
{

/// Number of doubles that the factorisation of n rows by up to numPieces pieces wants as workspace. A piece is what one
/// thread does of it.
std::size_t luWorkspaceSize(std::size_t n, std::size_t numPieces = 1);

/// LU factorisation in place of the n x n matrix whose row i starts at rows[i], by Crout's method with implicit
/// (row-scaled) partial pivoting. The rows do not overlap and need no alignment; the workspace, luWorkspaceSize(n)
/// doubles, is aligned to 64 bytes.
///
/// scale(i) = 1 / max |a(i,k)|, NaN elements skipped; a row without an element of non-zero magnitude ends it with
/// false, the matrix unchanged. Then, for each column j: a(i,j) -= a(i,k) a(k,j) for k ascending in [0, min(i, j)),
/// each product rounded before its subtraction; the pivot is the row i >= j of the greatest scale(i) |a(i,j)|, the last
/// one among equals, never one of NaN, row j if all are NaN; pivots[j] is that row, rows[j] and rows[pivots[j]] are
/// exchanged (elements never move) and scale(j) goes with its row; a pivot strictly between -1e-150 and 1e-150 becomes
/// +1e-150; the elements below are multiplied by its reciprocal. A zero multiplier is not skipped: what comes of signed
/// zeros and of zero times infinity stays what the plain loops make of them.
bool factoriseLu(double** rows, std::size_t n, int* pivots, double* workspace);

/// One factorisation that several threads work on. A caller reads singular, after all of them have returned: true
/// where factoriseLu returns false.
struct SharedLu
{
    double** rows = nullptr;
    std::size_t n = 0;
    int* pivots = nullptr;
    double* workspace = nullptr;
    std::size_t maxPieces = 0;
    std::atomic<std::size_t> numPieces{0};
    std::atomic<std::size_t> nextTask{0};
    std::atomic<std::size_t> numScaledParts{0};
    std::atomic<std::size_t> numPanels{0};
    std::atomic<bool> singular{false};
};

/// Prepares factoriseLu's work for up to numPieces pieces; the workspace holds luWorkspaceSize(n, numPieces) doubles.
void prepareSharedLu(SharedLu& shared, double** rows, std::size_t n, int* pivots, double* workspace,
                     std::size_t numPieces);

/// One piece: takes work until all has been taken. Any number of threads may call it, at any time after the
/// preparation, also when nothing is left; a single one does everything. A piece waits, spinning, only for work that a
/// running piece has taken. When all calls have returned the result is factoriseLu's, to the bit.
void workOnSharedLu(SharedLu& shared);

} // namespace fenn::kernels

#endif
