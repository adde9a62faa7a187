#ifndef FENN_HOST_PICTURES_VARIOGRAMPICTURE_H
#define FENN_HOST_PICTURES_VARIOGRAMPICTURE_H

#include <string>
#include <vector>

#include "analysis/BinnedSemivariogram.h"
#include "surrogatemodel_kriging/SemivariogramDump.h"

namespace fenn
{
class ModelParts;
}

namespace krige
{

/// Semivariogram values of the model of the first output, at rising lags.
struct VariogramCurve
{
    std::vector<double> lags;
    std::vector<double> values; // times the output's sample variance
};

/// From just above lag 0 to maxLag.
VariogramCurve curveOfModel(const fenn::ModelParts& parts, double maxLag);

/// Draws the bins and the curve; groups, which may be empty, are small dots behind them. Throws as Picture::save.
void drawVariogram(const std::string& path, const std::string& outputName, const std::vector<fenn::LagGroup>& groups,
                   const std::vector<fenn::analysis::LagBin>& bins, const VariogramCurve& curve);

} // namespace krige

#endif
