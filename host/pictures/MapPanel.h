#ifndef FENN_HOST_PICTURES_MAPPANEL_H
#define FENN_HOST_PICTURES_MAPPANEL_H

#include <vector>

#include "host/pictures/Panel.h"
#include "host/pictures/Picture.h"
#include "host/pictures/PictureNodes.h"
#include "host/pictures/PictureOptions.h"

namespace krige
{

/// What the samples say of a place.
enum class Reach
{
    Surrounded,   // by samples
    Extrapolated, // not surrounded, yet some sample is within the range
    OutOfReach    // beyond the range of every sample: the drift alone answers
};

/// Places in the two inputs of a map.
struct MapPlaces
{
    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> values; // empty: not known
};

/// What a map shows.
struct MapContent
{
    const PanelNodes& nodes;
    const std::vector<double>& values; // in the order of the nodes
    const std::vector<Reach>& reaches; // likewise
    MapPlaces outline;                 // around what samples surround; empty: everything
    MapPlaces samples;                 // with their values
    MapPlaces targets;                 // that were asked for beside the map, with their values
};

/// Adds a surface in colours to a picture: nodes as cells, those that are extrapolated hatched, those out of reach
/// grey, those without a value white; over them contours, samples and targets. panel: with its axes' names, its title
/// and its colours but for their limits, which follow what samples surround.
void addMap(Picture& picture, const Panel& panel, const MapContent& content, const SurfaceOptions& options);

/// Axes of one unit, as far as their lengths tell, are drawn to one scale.
bool haveOneScale(const AxisRange& x, const AxisRange& y);

/// `with points ...` for so many dots: a dark one within a light ring stands out from every colour.
std::string dotsOf(const std::string& data, std::size_t count);

/// Six significant digits.
PointLabel labelOf(double x, double y, double value);

} // namespace krige

#endif
