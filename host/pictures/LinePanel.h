#ifndef FENN_HOST_PICTURES_LINEPANEL_H
#define FENN_HOST_PICTURES_LINEPANEL_H

#include <string>
#include <vector>

#include "host/pictures/MapPanel.h"
#include "host/pictures/Panel.h"
#include "host/pictures/Picture.h"

namespace krige
{

/// What a profile along one input shows.
struct LineContent
{
    const std::vector<double>& nodes;
    const std::vector<double>& values;
    std::vector<double> lowerEnds{}; // of the interval; empty: no band
    std::vector<double> upperEnds{};
    std::string bandName{};
    const std::vector<Reach>& reaches; // of the nodes
    MapPlaces samples{};               // place and value
    MapPlaces targets{};               // that were asked for, likewise
};

/// Adds a line over its error band to a picture, with samples and targets; where the nodes are not surrounded by
/// samples the ground is grey, darker where they are out of reach. panel: with its axes' names and its title.
void addLine(Picture& picture, Panel panel, const LineContent& content, PointStyle points);

} // namespace krige

#endif
