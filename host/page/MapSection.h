#ifndef FENN_HOST_PAGE_MAPSECTION_H
#define FENN_HOST_PAGE_MAPSECTION_H

#include <cstddef>
#include <string>
#include <vector>

#include "host/model/SampleTable.h"
#include "host/page/MapView.h"
#include "host/targets/PredictionColumns.h"

namespace krige
{

/// What the maps of a page are drawn from. Refers to all of it.
struct MapData
{
    const SampleTable& samples;
    const std::vector<MapView>& views;
    std::size_t numViewsLeftOut = 0;
    const std::vector<PredictionColumn>& columns; // of the views' values
    const std::string& units;                     // of the inputs
    bool areLogarithms = false;                   // whether standard errors are of logarithms
    std::string support;                          // a sentence about targets that no sample reaches
};

/// The estimates of every output and their standard errors: layers of a map that can be switched, a profile with the
/// interval of 95 %, or slices; the values under the pointer are shown. Columns: per output the estimate, its standard
/// error, the lower and the upper end of its interval.
std::string mapSection(const MapData& data);

} // namespace krige

#endif
