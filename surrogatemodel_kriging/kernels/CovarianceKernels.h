#ifndef FENN_KERNELS_COVARIANCE_KERNELS_H
#define FENN_KERNELS_COVARIANCE_KERNELS_H

#include <cstddef>

#include "surrogatemodel_kriging/kernels/SemivariogramKernels.h"
#include "surrogatemodel_kriging/kernels/SolveKernels.h"

namespace fenn::kernels
{

/// Points whose products are summed as one term.
constexpr std::size_t pointsPerTerm = 8;

/// Points that share a bounding box and are skipped together; whole terms.
constexpr std::size_t pointsPerBox = 32;

/// Points in the order of their sums, neighbours together; raw coordinates. Refers, does not own.
struct BoxedPoints
{
    const double* const* coordinates = nullptr; // one array per input variable
    std::size_t numPts = 0;
    const double* const* low = nullptr; // bounds of each 32 points, likewise: the last box may hold fewer
    const double* const* high = nullptr;
};

/// Weights of several outputs: output o at point j is values[o * stride + j]. Refers, does not own.
struct PointWeights
{
    const double* values = nullptr;
    std::size_t stride = 0;
    std::size_t numOutputs = 0;
};

// Targets come eight at a time: coordinate v of target t at targets[8 * v + t]. gamma is what evaluateSpherical gives
// for a point as source, c = 1 - gamma rounded once.

/// lines[8 * j + t] = c of point j and target t for j in [begin, end). begin is the start of a box.
void evaluateCovariances(const SphericalModel& model, const BoxedPoints& points, std::size_t begin, std::size_t end,
                         const double* targets, double* lines);

/// sums[8 * o + t] = sum over all points j of weight(o, j) c(j, t), each product rounded: the products of eight points
/// from a multiple of eight on as ((p0 + p1) + (p2 + p3)) + ((p4 + p5) + (p6 + p7)), a missing one being weight +0.0
/// times +0.0; these terms are added from +0.0 on in ascending order, as are the errors of these additions, each of
/// which is a double (Knuth's two-sum, as addWithError gives it); at last the sum of the errors is added.
///
/// Weights are finite. Then a term of covariances that are all +0.0 changes no bit, and boxes beyond the range of all
/// eight targets are skipped. sums has room for twice as many numbers: the errors come behind. The rounding error of
/// the sum is below 4.5 units of 2^-53 times the sum of magnitudes of the products.
void sumCovariances(const SphericalModel& model, const BoxedPoints& points, const double* targets,
                    const PointWeights& weights, double* sums);

/// The same sums, to the bit, of covariances that evaluateCovariances wrote for all points.
void sumLines(const double* lines, std::size_t numPts, const PointWeights& weights, double* sums);

/// A number as the unevaluated sum of two doubles, eight side by side for each output: output o, lane t at [8 * o + t].
struct DoubledSums
{
    double* high = nullptr;
    double* low = nullptr;
};

/// Subtracts weight(o, j) (1 - gamma(j, t)) for all points j, ascending, in twice the precision: 1 - gamma and its
/// rounding error are both taken, as is the error of each product (Veltkamp's and Dekker's splitting) and of each
/// difference. Target t is the point firstTarget + t itself, as far as there are so many points: there C is 1, without
/// the nugget.
///
///     product = weight * c, productError = error of the product, c = 1 - gamma, cError = (1 - c) - gamma
///     high = high - product, with its error; low += (differenceError - productError) - weight * cError
///
/// Source: T. Ogita, S. M. Rump, S. Oishi, "Accurate sum and dot product", SIAM Journal on Scientific Computing 26
/// (2005), algorithm Dot2; T. J. Dekker, Numerische Mathematik 18 (1971).
void subtractCovariancesTwice(const SphericalModel& model, const BoxedPoints& points, std::size_t firstTarget,
                              const double* targets, const PointWeights& weights, const DoubledSums& sums);

} // namespace fenn::kernels

#endif
