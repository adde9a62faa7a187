#include "surrogatemodel_kriging/SphericalSemivariogram.h"

#include <array>
#include <cmath>

#include "surrogatemodel_kriging/kernels/SemivariogramKernels.h"

double scaledSquaredDistance(int numDims, const std::vector<Normalizer>& normalizers, const double* pointA,
                             const double* pointB, double factor)
{
    double sum = 0.0;
    for (int k = 0; k < numDims; ++k)
    {
        const double difference = (pointA[k] - pointB[k]) * normalizers[static_cast<std::size_t>(k)].getScale();
        sum += difference * difference;
    }
    return factor * factor * sum;
}

SphericalSemivariogram::SphericalSemivariogram(int numDims_, const std::vector<Normalizer>& normalizers_,
                                               const double* cornerA, const double* cornerB, double rangeFraction,
                                               double nugget)
    : normalizers(&normalizers_),
      numDims(numDims_),
      m_rangeSquared(scaledSquaredDistance(numDims_, normalizers_, cornerA, cornerB, rangeFraction)),
      m_nugget(nugget),
      m_shapeCoefficient((1.0 - nugget) * 0.5 / (std::sqrt(m_rangeSquared) * m_rangeSquared)),
      m_threeRangeSquared(m_rangeSquared * 3.0)
{
}

SphericalSemivariogram::~SphericalSemivariogram() = default;

double SphericalSemivariogram::evaluate(const std::vector<double>& separation) const
{
    double lagSquared = 0.0;
    for (int k = 0; k < numDims; ++k)
    {
        const auto index = static_cast<std::size_t>(k);
        const double difference = separation[index] * (*normalizers)[index].getScale();
        lagSquared += difference * difference;
    }
    // DELIBERATE: a zero lag gives the nugget, not 0, and a NaN lag passes both tests and gives NaN. Right-hand sides
    // of targets on a source point, and of NaN targets, rely on it. Tests:
    // SphericalSemivariogramTest.ZeroSeparationGivesTheNuggetNotZero, ANaNCoordinateGivesNaN
    if (lagSquared <= 0.0)
        return m_nugget;
    if (lagSquared >= m_rangeSquared)
        return 1.0;
    return std::sqrt(lagSquared) * m_shapeCoefficient * (m_threeRangeSquared - lagSquared) + m_nugget;
}

void SphericalSemivariogram::evaluatePairs(const fenn::PointArrays& sources, const fenn::PointArrays& targets,
                                           double* values, std::size_t stride) const
{
    std::array<double, 32> scales;
    const std::size_t numScales = numDims > 0 ? static_cast<std::size_t>(numDims) : 0;
    if (numScales > scales.size())
    {
        SemivariogramInterface::evaluatePairs(sources, targets, values, stride);
        return;
    }
    const fenn::kernels::SphericalModel model = getKernelModel(scales.data());
    fenn::kernels::evaluateSpherical(model, sources.coordinates, sources.numPts, targets.coordinates, targets.numPts,
                                     values, stride);
}

bool SphericalSemivariogram::neverThrows() const
{
    return true;
}

fenn::kernels::SphericalModel SphericalSemivariogram::getKernelModel(double* scales) const
{
    const std::size_t numScales = numDims > 0 ? static_cast<std::size_t>(numDims) : 0;
    for (std::size_t v = 0; v < numScales; ++v)
        scales[v] = (*normalizers)[v].getScale();
    return {scales, numScales, m_rangeSquared, m_nugget, m_shapeCoefficient, m_threeRangeSquared};
}
