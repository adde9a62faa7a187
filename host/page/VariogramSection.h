#ifndef FENN_HOST_PAGE_VARIOGRAMSECTION_H
#define FENN_HOST_PAGE_VARIOGRAMSECTION_H

#include <string>
#include <vector>

#include "analysis/BinnedSemivariogram.h"
#include "host/model/LagUnit.h"
#include "host/pictures/VariogramPicture.h"

namespace krige
{

/// The semivariogram of an output beside its model's.
struct VariogramView
{
    std::string outputName; // as the model takes it
    std::vector<fenn::analysis::LagBin> bins;
    VariogramCurve curve;
    std::string pairs; // what was compared, as lines of a report
};

/// driftOrder: of the model. without: why there is none, instead of views.
std::string variogramSection(const std::vector<VariogramView>& views, const LagUnit& unit, int driftOrder,
                             const std::string& without);

} // namespace krige

#endif
