#ifndef FENN_ANALYSIS_INVERSEDIAGONAL_H
#define FENN_ANALYSIS_INVERSEDIAGONAL_H

#include <cstddef>
#include <vector>

#include "analysis/Progress.h"

class Matrix;

namespace fenn::analysis
{

/// The first count diagonal elements of the inverse of a factorised matrix, by one solve each: element i of the
/// solution for the i-th unit vector. The place for a batched solve. Needs room for one column. progress counts solves.
/// Throws Error as Matrix::luSolve, and Cancelled.
std::vector<double> calcInverseDiagonal(const Matrix& factorised, std::size_t count, const Progress& progress = {});

} // namespace fenn::analysis

#endif
