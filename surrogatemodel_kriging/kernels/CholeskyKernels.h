#ifndef FENN_KERNELS_CHOLESKY_KERNELS_H
#define FENN_KERNELS_CHOLESKY_KERNELS_H

#include <atomic>
#include <cstddef>

#include "surrogatemodel_kriging/kernels/PackedTriangle.h"
#include "surrogatemodel_kriging/kernels/SolveKernels.h"

namespace fenn::kernels
{

/// Number of doubles that a factorisation of numRows rows wants beside the triangle: the reciprocals of the diagonal
/// first, numRows of them, which the substitutions read; then what shared work needs.
std::size_t choleskyWorkspaceSize(std::size_t numRows);

/// Factorises a packed triangle A in place: A = L D L^T, D = +1 for the first p = numPositive rows and -1 for the
/// others. Where there are no others it is Cholesky's method; the others are those of a border F, with zeros on its
/// diagonal:
///
///     | C    F |   | L    0 | | 1  0 | | L^T  V |
///     | F^T  0 | = | V^T  R | | 0 -1 | | 0  R^T |        L V = F,  R R^T = F^T C^-1 F
///
/// For each column j ascending: a(i,j) -= a(i,k) a(j,k) for i >= j and k ascending in [0, min(j, p)), each product
/// rounded before its subtraction; for j >= p then a(i,j) = -a(i,j), and the same for k ascending in [p, j). A diagonal
/// element that is not above 0 ends it with false, the triangle undefined. Else it becomes its square root,
/// reciprocals[j] one over that, and the elements below are multiplied by it. Elements right of the diagonal must be
/// those of the symmetric matrix and become +0.0.
bool factoriseCholesky(const PackedTriangle& triangle, double* workspace);

/// One factorisation that several threads work on. A caller reads failed, after all of them have returned: true where
/// factoriseCholesky returns false.
struct SharedCholesky
{
    PackedTriangle triangle;
    double* workspace = nullptr;
    std::atomic<std::size_t> nextTask{0};
    std::atomic<bool> failed{false};
};

void prepareSharedCholesky(SharedCholesky& shared, const PackedTriangle& triangle, double* workspace);

/// One piece: takes work until all has been taken. Any number of threads may call it, at any time after the
/// preparation; a single one does everything. A piece waits, spinning, only for work that a running piece has taken.
/// When all calls have returned the result is factoriseCholesky's, to the bit.
void workOnSharedCholesky(SharedCholesky& shared);

/// Solves L X = B in place for any number of strips, as StripGroup holds them, of numRows entries a target:
///
///     b(i) -= a(i,k) b(k) for k ascending in [0, i), each product rounded before its subtraction; b(i) *=
///     reciprocals[i]
///
/// firstTile: whole tiles of rows at the top that hold zeros in every strip. They are neither read nor written; zeros
/// of positive sign give the bits of a substitution from the first row on.
void substituteLower(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group,
                     std::size_t firstTile = 0);

/// Solves L^T X = B likewise: for i descending b(i) -= a(k,i) b(k) for k descending from the last row to i + 1, each
/// product rounded before its subtraction, then b(i) *= reciprocals[i].
void substituteLowerTransposed(const PackedTriangle& triangle, const double* reciprocals, const StripGroup& group);

/// block[rowLength * i + j] -= a_i(k) b_j(k) for k ascending in [begin, end), whole eights, each product rounded before
/// its subtraction: i counts the columns of the strips of a, j those of b.
void subtractColumnProducts(const StripGroup& a, const StripGroup& b, std::size_t begin, std::size_t end, double* block,
                            std::size_t rowLength);

} // namespace fenn::kernels

#endif
