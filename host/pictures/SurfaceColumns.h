#ifndef FENN_HOST_PICTURES_SURFACECOLUMNS_H
#define FENN_HOST_PICTURES_SURFACECOLUMNS_H

#include <string>
#include <vector>

#include "host/pictures/PictureOptions.h"
#include "host/pictures/QuantityName.h"
#include "host/targets/PredictionColumns.h"

namespace krige
{

/// The columns that a picture of estimates shows, all that belong to one panel together. isLine: an estimate has the
/// ends of its interval with it.
std::vector<PredictionColumn> chooseSurfaceColumns(const std::vector<std::string>& outputNames,
                                                   const SurfaceOptions& options, bool isLine);

/// What a column is called beside its axis: "standard error of zinc (ppm)". output: of it; coverage: of its interval,
/// in percent. areLogarithms: standard errors are those of the logarithm.
QuantityName nameColumn(const PredictionColumn& column, const QuantityName& output, double coverage,
                        bool areLogarithms);

} // namespace krige

#endif
