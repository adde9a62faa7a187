#ifndef FENN_HOST_PICTURES_PANELLAYOUT_H
#define FENN_HOST_PICTURES_PANELLAYOUT_H

#include <string>
#include <vector>

#include "host/pictures/Panel.h"

namespace krige
{

/// A rectangle, in pixels from the lower left corner of the picture.
struct Rectangle
{
    double left = 0.0;
    double bottom = 0.0;
    double width = 0.0;
    double height = 0.0;
};

/// Where the parts of a panel lie in a cell of a picture, so that no text runs into another panel: worked out from the
/// labels themselves, and handed to gnuplot as margins. It does not depend on the fonts of a machine.
class PanelLayout
{
public:
    /// cellWidth, cellHeight: the room that there is, in pixels.
    PanelLayout(const Panel& panel_, double cellWidth, double cellHeight);

    /// The room that the panel takes of its cell: less where its axes have one scale.
    double getNeededWidth() const
    {
        return left + plotWidth + right;
    }

    double getNeededHeight() const
    {
        return bottom + plotHeight + top;
    }

    /// Gnuplot commands for the panel in the middle of a cell of a picture of this size.
    std::string commands(const Rectangle& cell, double pictureWidth, double pictureHeight) const;

    /// The panel's labels that fit beside each other.
    std::vector<PointLabel> chooseLabels() const;

private:
    void setMargins();
    std::string axisCommands(const Rectangle& plot, double pictureWidth, double pictureHeight) const;
    std::string colourCommands(const Rectangle& plot, double pictureWidth, double pictureHeight) const;

    const Panel& panel;
    Ticks x;
    Ticks y;
    Ticks colours;
    double left = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    double top = 0.0;
    double plotWidth = 0.0;
    double plotHeight = 0.0;
};

/// "name - offset (unit)": what stands beside an axis.
std::string axisTitle(const std::string& name, const std::string& unit, const Ticks& ticks);

} // namespace krige

#endif
