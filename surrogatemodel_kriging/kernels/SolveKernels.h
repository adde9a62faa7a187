#ifndef FENN_KERNELS_SOLVE_KERNELS_H
#define FENN_KERNELS_SOLVE_KERNELS_H

#include <cstddef>

#include "surrogatemodel_kriging/kernels/Strips.h"

namespace fenn::kernels
{

/// Forward substitution with the unit lower triangle of the n factor rows: for i ascending from 0, b(i) -= a(i,k) b(k)
/// for k ascending in [0, i), each product rounded before its subtraction. Nothing is skipped: a leading zero of b is
/// multiplied like everything else.
void substituteForward(const double* const* rows, std::size_t n, const StripGroup& forward);

/// Back substitution with the upper triangle: for i descending from n - 1, b(i) -= a(i,k) b(k) for k ascending in
/// (i, n), each product rounded before its subtraction, then b(i) /= a(i,i). Returns whether some b(i), of whatever
/// lane, then lay beyond +-limit; NaN does not.
bool substituteBack(const double* const* rows, std::size_t n, const StripGroup& back, double limit);

/// Both, of two groups that do not overlap, mixed: one waits for memory where the other waits for arithmetic.
bool substituteBothWays(const double* const* rows, std::size_t n, const StripGroup& back, const StripGroup& forward,
                        double limit);

/// to(i) = from(order[i]) for i in [0, n), for each strip of two groups of equally many strips.
void permuteRows(const int* order, std::size_t n, const StripGroup& from, const StripGroup& to);

/// sums[(o * weights.numStrips + s) * stripWidth + t] = sum over j ascending in [0, count) of weight(j) of target t of
/// strip s times values[o][j], each product rounded before it is added, starting with the first product or, where
/// startsAtZero[o], with +0.0. count is at least 1.
void sumWeighted(const StripGroup& weights, std::size_t count, const double* const* values, const bool* startsAtZero,
                 std::size_t numSums, double* sums);

/// sums[s * stripWidth + t] = sum over j ascending in [0, count) of a(j) b(j), starting with the first product, for
/// each strip of two groups of equally many strips. count is at least 1.
void sumProducts(const StripGroup& a, const StripGroup& b, std::size_t count, double* sums);

} // namespace fenn::kernels

#endif
