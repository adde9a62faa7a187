#ifndef FENN_KERNELS_SIDE_BY_SIDE_KERNELS_H
#define FENN_KERNELS_SIDE_BY_SIDE_KERNELS_H

#include <cstddef>

#include "surrogatemodel_kriging/kernels/SphericalModel.h"

/// Several small Kriging systems of one size, one in each of eight lanes: row i of column c of system t stands at
/// columns[(c * numRows + i) * 8 + t]. Column numRows is the right-hand side. Lanes never meet: the bits of a system do
/// not depend on its neighbours.
namespace fenn::kernels
{

constexpr std::size_t numSideBySide = 8;

/// Doubles of the columns and of the workspace of solveSideBySide; both start on a line of the cache.
std::size_t sideBySideColumnsSize(std::size_t numRows);
std::size_t sideBySideWorkspaceSize(std::size_t numRows);

/// The semivariogram's part of eight systems of numRows rows over numPts points each: evaluateSpherical for points i
/// and j, i /= j, +0.0 on the diagonal, and on the right-hand side for the points and the target. Coordinate v of point
/// i of system t is points[(v * numPts + i) * 8 + t], that of its target targets[v * 8 + t]. Other entries are left as
/// they were.
void evaluateSphericalSideBySide(const SphericalModel& model, const double* points, const double* targets,
                                 std::size_t numPts, double* columns, std::size_t numRows);

/// Solves eight symmetric systems of numRows rows, at least 1: factoriseLu, then substitution forward and back, every
/// sum in the order of the single forms. Component i of system t goes to solutions[i * 8 + t]; the columns are used up.
///
/// Bit t of the result is set where the single forms do something else: a row of zeros or NaN, a permuted right-hand
/// side that begins with a zero, a component of the solution beyond +-1e150. What stands there then is not to be used.
unsigned solveSideBySide(double* columns, std::size_t numRows, double* solutions, double* workspace);

} // namespace fenn::kernels

#endif
