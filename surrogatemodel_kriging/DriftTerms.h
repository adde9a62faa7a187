#ifndef FENN_SURROGATEMODEL_KRIGING_DRIFTTERMS_H
#define FENN_SURROGATEMODEL_KRIGING_DRIFTTERMS_H

#include <cstddef>
#include <vector>

#include "surrogatemodel_kriging/Normalizer.h"

namespace fenn
{

/// Writes the drift terms of kWidth targets side by side, each term kWidth entries, and returns where the next entries
/// go. Coordinate v of target t is target[kWidth * v + t]; scratch receives the normalised ones in the same places.
template <std::size_t kWidth>
double* writeDriftTerms(double* out, int driftOrder, const double* target, const std::vector<Normalizer>& normalizers,
                        int numInputVars, double* scratch)
{
    const auto multiply = [&out](const double* term, const double* u)
    {
        for (std::size_t t = 0; t < kWidth; ++t)
            out[t] = term[t] * u[t];
        out += kWidth;
    };
    for (std::size_t v = 0; v < static_cast<std::size_t>(numInputVars); ++v)
    {
        double* u = scratch + kWidth * v;
        for (std::size_t t = 0; t < kWidth; ++t)
            u[t] = normalizers[v].normalize(target[kWidth * v + t]);
        for (std::size_t t = 0; t < kWidth; ++t)
            out[t] = u[t];
        out += kWidth;
        for (std::size_t w = 0; driftOrder >= 2 && w <= v; ++w)
        {
            const double* quadratic = out;
            multiply(u, scratch + kWidth * w);
            for (std::size_t y = 0; driftOrder >= 3 && y <= w; ++y)
            {
                const double* cubic = out;
                multiply(quadratic, scratch + kWidth * y);
                for (std::size_t z = 0; driftOrder >= 4 && z <= y; ++z)
                    multiply(cubic, scratch + kWidth * z);
            }
        }
    }
    return out;
}

} // namespace fenn

#endif
