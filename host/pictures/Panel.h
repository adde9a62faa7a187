#ifndef FENN_HOST_PICTURES_PANEL_H
#define FENN_HOST_PICTURES_PANEL_H

#include <optional>
#include <string>
#include <vector>

#include "host/pictures/Axis.h"
#include "host/pictures/ColourKey.h"

namespace krige
{

struct PanelAxis
{
    AxisRange range;
    std::string name;
    std::string unit; // may be empty
};

/// A number to be written beside a place of a panel.
struct PointLabel
{
    double x = 0.0;
    double y = 0.0;
    std::string text; // of a number
};

/// One panel of a picture: its axes, what explains them, and what gnuplot plots between them. Where it lies, its ticks
/// and its margins are the picture's business.
struct Panel
{
    std::string title; // may be empty
    PanelAxis x;
    PanelAxis y;
    bool hasOneScale = false; // a unit of x is as long as one of y
    bool isSquare = false;
    bool hasKeyAbove = false; // of lines and marks; without it the commands may place one inside
    bool hasGrid = false;
    std::optional<ColourKey> colours;
    std::string commands;           // ended by a line end each
    std::string plots;              // what follows the word plot
    std::vector<PointLabel> labels; // those that would cover an earlier one are left out
};

} // namespace krige

#endif
