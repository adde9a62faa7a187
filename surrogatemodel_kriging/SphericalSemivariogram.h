#ifndef FENN_SURROGATEMODEL_KRIGING_SPHERICALSEMIVARIOGRAM_H
#define FENN_SURROGATEMODEL_KRIGING_SPHERICALSEMIVARIOGRAM_H

#include <cstddef>
#include <vector>

#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SemivariogramInterface.h"

namespace fenn::kernels
{
struct SphericalModel;
}

/// Spherical semivariogram with sill 1, nugget c0 and range a, over normalised separations h:
///
///     gamma(0) = c0,  gamma(h) = c0 + (1 - c0) (1.5 h/a - 0.5 (h/a)^3) for 0 < h < a,  gamma(h) = 1 for h >= a
///
/// gamma(0) is c0 and not 0 on purpose: the Kriging matrix writes its own zero diagonal, and a target on a source
/// point must see the nugget.
///
/// Source: N. Cressie, Statistics for Spatial Data (Wiley, 1993), section 2.3. Valid in up to three input variables;
/// with more it is used all the same, and a variance can then come out negative.
///
/// Refers to the normalizers it was given, which must outlive it. Immutable after construction: any number of threads
/// may evaluate at once.
class SphericalSemivariogram final : public SemivariogramInterface
{
public:
    /// The range is rangeFraction times the normalised distance between the corners (raw input values, one per input
    /// variable). Only the size of dimsTemplate is read. Nothing is checked: a zero range makes every separation
    /// above zero evaluate to the sill.
    template <typename T>
    SphericalSemivariogram(const std::vector<T>& dimsTemplate, const std::vector<Normalizer>& normalizers_,
                           const std::vector<double>& cornerA, const std::vector<double>& cornerB, double rangeFraction,
                           double nugget)
        : SphericalSemivariogram(static_cast<int>(dimsTemplate.size()), normalizers_, cornerA.data(), cornerB.data(),
                                 rangeFraction, nugget)
    {
    }

    ~SphericalSemivariogram() override;

    /// separation: raw differences, at least one per input variable. A NaN coordinate gives NaN, no input variables the
    /// nugget. Never throws.
    double evaluate(const std::vector<double>& separation) const override;

    void evaluatePairs(const fenn::PointArrays& sources, const fenn::PointArrays& targets, double* values,
                       std::size_t stride) const override;
    bool neverThrows() const override;

    /// The constants in the form that the kernels take. scales: room for one scale per input variable, which the result
    /// refers to.
    fenn::kernels::SphericalModel getKernelModel(double* scales) const;

private:
    SphericalSemivariogram(int numDims_, const std::vector<Normalizer>& normalizers_, const double* cornerA,
                           const double* cornerB, double rangeFraction, double nugget);

    const std::vector<Normalizer>* normalizers;
    int numDims;
    double m_rangeSquared;      // a^2
    double m_nugget;            // c0
    double m_shapeCoefficient;  // (1 - c0) / (2 a^3)
    double m_threeRangeSquared; // 3 a^2
};

/// The rule behind the template below: factor^2 times the squared normalised distance of two points of numDims raw
/// coordinates. Compiled here, so that a caller's floating-point flags cannot change a bit of it.
double scaledSquaredDistance(int numDims, const std::vector<Normalizer>& normalizers, const double* pointA,
                             const double* pointB, double factor);

/// factor^2 * sum of ((pointA[k] - pointB[k]) * scale_k)^2 over the first dimsTemplate.size() coordinates, raw units.
template <typename T>
double scaledSquaredDistance(const std::vector<T>& dimsTemplate, const std::vector<Normalizer>& normalizers,
                             const std::vector<double>& pointA, const std::vector<double>& pointB, double factor)
{
    return scaledSquaredDistance(static_cast<int>(dimsTemplate.size()), normalizers, pointA.data(), pointB.data(),
                                 factor);
}

#endif
