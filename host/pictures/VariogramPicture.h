#ifndef FENN_HOST_PICTURES_VARIOGRAMPICTURE_H
#define FENN_HOST_PICTURES_VARIOGRAMPICTURE_H

#include <string>
#include <vector>

#include "analysis/BinnedSemivariogram.h"
#include "host/model/LagUnit.h"
#include "host/pictures/PictureOptions.h"
#include "host/pictures/QuantityName.h"

namespace fenn
{
class ModelParts;
}

namespace krige
{

/// Semivariogram values of the model of the first output, at rising normalised lags.
struct VariogramCurve
{
    std::vector<double> lags;
    std::vector<double> values; // times the sill
    double sill = 0.0;          // squared units of the output
    double range = 0.0;         // normalised
};

/// From just above lag 0 to maxLag.
VariogramCurve curveOfModel(const fenn::ModelParts& parts, double maxLag, double sill);

/// Draws the bins, each with its number of pairs, and the curve, the lags in this unit; singleLags, which may be empty,
/// are small dots behind them. Throws as Picture::save.
void drawVariogram(const PictureOptions& options, const QuantityName& semivariance, const LagUnit& unit,
                   const std::vector<fenn::analysis::LagBin>& singleLags,
                   const std::vector<fenn::analysis::LagBin>& bins, const VariogramCurve& curve);

} // namespace krige

#endif
