#ifndef FENN_TESTS_SUPPORT_NAIVESPHERICAL_H
#define FENN_TESTS_SUPPORT_NAIVESPHERICAL_H

#include <cmath>
#include <cstddef>
#include <functional>
#include <vector>

#include "surrogatemodel_kriging/Normalizer.h"

namespace fenn::test
{

using NaiveSemivariogram = std::function<double(const std::vector<double>&)>;

/// The spherical model's written formula.
inline NaiveSemivariogram naiveSpherical(const std::vector<double>& scales, const std::vector<double>& cornerA,
                                         const std::vector<double>& cornerB, double rangeFraction, double nugget)
{
    double diagonalSquared = 0.0;
    for (std::size_t k = 0; k < scales.size(); ++k)
        diagonalSquared += ((cornerA[k] - cornerB[k]) * scales[k]) * ((cornerA[k] - cornerB[k]) * scales[k]);
    const double rangeSquared = (rangeFraction * rangeFraction) * diagonalSquared;
    const double shape = (1.0 - nugget) * 0.5 / (std::sqrt(rangeSquared) * rangeSquared);
    return [=](const std::vector<double>& separation)
    {
        double lagSquared = 0.0;
        for (std::size_t k = 0; k < scales.size(); ++k)
            lagSquared += (separation[k] * scales[k]) * (separation[k] * scales[k]);
        if (lagSquared <= 0.0)
            return nugget;
        if (lagSquared >= rangeSquared)
            return 1.0;
        return std::sqrt(lagSquared) * shape * (rangeSquared * 3.0 - lagSquared) + nugget;
    };
}

inline std::vector<double> scalesOf(const std::vector<Normalizer>& normalizers)
{
    std::vector<double> scales;
    for (const Normalizer& normalizer : normalizers)
        scales.push_back(normalizer.getScale());
    return scales;
}

} // namespace fenn::test

#endif
