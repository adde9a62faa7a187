#include "host/pictures/SurfacePicture.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "analysis/ConvexHull.h"
#include "host/pictures/LinePanel.h"
#include "host/pictures/QuantityName.h"
#include "host/pictures/SurfaceColumns.h"
#include "host/reports/RangeText.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

using Columns = std::vector<std::vector<double>>;

constexpr std::uint64_t numNodesOfLine = 500;
constexpr std::uint64_t numNodesAcross = 161; // of a map that no grid was asked for
constexpr std::size_t mostPanels = 16;
constexpr std::size_t mostSamplesDrawn = 5000;
constexpr double sliceHalfThickness = 0.1; // of the box

double meanOf(const std::vector<double>& values)
{
    double mean = 0.0; // updated step by step: a sum may overflow
    for (std::size_t i = 0; i < values.size(); ++i)
        mean += (values[i] - mean) / static_cast<double>(i + 1);
    return mean;
}

std::vector<double> meansOf(const Columns& inputs)
{
    std::vector<double> means;
    for (const std::vector<double>& input : inputs)
        means.push_back(meanOf(input));
    return means;
}

AxisRange spanOf(const std::vector<double>& values)
{
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    return {*low, *high};
}

std::vector<double> pick(const std::vector<double>& values, const std::vector<std::size_t>& indices)
{
    std::vector<double> picked;
    for (const std::size_t i : indices)
        picked.push_back(values[i]);
    return picked;
}

std::size_t findColumn(const std::vector<PredictionColumn>& columns, const PredictionColumn& wanted)
{
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const PredictionColumn& column)
                                    { return column.quantity == wanted.quantity && column.output == wanted.output; });
    return static_cast<std::size_t>(found - columns.begin());
}

/// Nodes over the box of samples and targets.
GridSpec makeGrid(const SampleTable& samples, const Columns& targets)
{
    std::size_t numVarying = 0;
    GridSpec grid;
    for (std::size_t v = 0; v < samples.inputs.size(); ++v)
    {
        AxisRange span = spanOf(samples.inputs[v]);
        for (std::size_t t = 0; !targets.empty() && t < targets[v].size(); ++t)
        {
            if (std::isfinite(targets[v][t]))
                span = {std::min(span.low, targets[v][t]), std::max(span.high, targets[v][t])};
        }
        numVarying += span.low < span.high ? 1 : 0;
        grid.axes.push_back({samples.inputNames[v], span.low, span.high, 1});
    }
    for (GridAxis& axis : grid.axes)
    {
        if (axis.low < axis.high)
            axis.count = numVarying == 1 ? numNodesOfLine : numNodesAcross;
    }
    return grid;
}

class SurfaceDrawing
{
public:
    SurfaceDrawing(const SampleTable& samples_, const SurfaceOptions& options_, const SurfaceUnits& units_,
                   const std::vector<PredictionColumn>& columns_, const Columns& targets_, const SurfaceModel& model_)
        : samples(samples_), options(options_), units(units_), columns(columns_), targets(targets_), model(model_)
    {
        for (const std::vector<double>& input : samples.inputs)
            sampleBox.push_back(spanOf(input));
        if (!targets.empty() && !targets.front().empty())
            model.predict(targets, targetValues);
    }

    void addPanel(Picture& picture, const PanelNodes& nodes, const Columns& values) const
    {
        const Columns places = nodes.calcTargets();
        const std::vector<Reach> reaches = findReaches(nodes, places);
        for (std::size_t q = 0; q < columns.size() && picture.getNumPanels() < mostPanels; ++q)
        {
            if (nodes.isLine())
            {
                addLineOf(picture, nodes, values, q, reaches);
                if (hasBand(q))
                    q += 2; // its ends
            }
            else
                addMapOf(picture, nodes, values, q, reaches);
        }
    }

private:
    /// The estimate of a line is followed by the ends of its interval.
    bool hasBand(std::size_t q) const
    {
        return columns[q].quantity == Quantity::Estimate && q + 2 < columns.size() &&
               columns[q + 1].quantity == Quantity::LowerEnd;
    }

    Panel startPanel(const PanelNodes& nodes, std::size_t q) const
    {
        Panel panel;
        panel.title = describePlace(nodes);
        const QuantityName x = nameQuantity(samples.inputNames[nodes.x], units.ofInputs);
        panel.x = {{}, x.name, x.unit};
        const QuantityName shown = nameOf(q);
        if (nodes.isLine())
        {
            panel.y = {{}, shown.name, shown.unit};
            return panel;
        }
        const QuantityName y = nameQuantity(samples.inputNames[nodes.y], units.ofInputs);
        panel.y = {{}, y.name, y.unit};
        const bool isUncertainty =
            columns[q].quantity == Quantity::StandardError || columns[q].quantity == Quantity::Variance;
        panel.colours = ColourKey{};
        panel.colours->palette = isUncertainty ? uncertaintyPalette() : estimatePalette();
        panel.colours->name = shown.name;
        panel.colours->unit = shown.unit;
        return panel;
    }

    void addMapOf(Picture& picture, const PanelNodes& nodes, const Columns& values, std::size_t q,
                  const std::vector<Reach>& reaches) const
    {
        MapContent content{nodes, values[q], reaches, {}, {}, {}};
        const std::vector<std::size_t> drawn = findNear(nodes, samples.inputs);
        content.samples = {pick(samples.inputs[nodes.x], drawn), pick(samples.inputs[nodes.y], drawn),
                           pick(samples.outputs[columns[q].output], drawn)};
        const bool isAnyBeyond =
            std::any_of(reaches.begin(), reaches.end(), [](Reach reach) { return reach != Reach::Surrounded; });
        if (samples.inputs.size() == 2 && isAnyBeyond)
        {
            const Columns outline =
                fenn::analysis::ConvexHull(samples.inputs[nodes.x], samples.inputs[nodes.y]).calcOutline();
            content.outline = {outline[0], outline[1], {}};
        }
        if (!targetValues.empty())
        {
            const std::vector<std::size_t> asked = findNear(nodes, targets);
            content.targets = {pick(targets[nodes.x], asked), pick(targets[nodes.y], asked),
                               pick(targetValues[q], asked)};
        }
        addMap(picture, startPanel(nodes, q), content, options);
    }

    void addLineOf(Picture& picture, const PanelNodes& nodes, const Columns& values, std::size_t q,
                   const std::vector<Reach>& reaches) const
    {
        LineContent content{nodes.xNodes, values[q], {}, {}, {}, reaches, {}, {}};
        if (hasBand(q))
        {
            content.lowerEnds = values[q + 1];
            content.upperEnds = values[q + 2];
            content.bandName = formatNumber(units.coverage) + " % interval";
        }
        if (columns[q].quantity != Quantity::StandardError && columns[q].quantity != Quantity::Variance)
        {
            const std::vector<std::size_t> drawn = findNear(nodes, samples.inputs);
            content.samples = {
                pick(samples.inputs[nodes.x], drawn), pick(samples.outputs[columns[q].output], drawn), {}};
        }
        if (!targetValues.empty())
        {
            const std::vector<std::size_t> asked = findNear(nodes, targets);
            content.targets = {pick(targets[nodes.x], asked), pick(targetValues[q], asked), {}};
        }
        addLine(picture, startPanel(nodes, q), content, options.points);
    }

    QuantityName nameOf(std::size_t q) const
    {
        const std::size_t output = columns[q].output;
        return nameColumn(columns[q], nameQuantity(samples.outputNames[output], options.unitOf(output)), units.coverage,
                          units.areLogarithms);
    }

    /// What samples say of each node: see SurfacePicture.
    std::vector<Reach> findReaches(const PanelNodes& nodes, const Columns& places) const
    {
        const bool hasHull = samples.inputs.size() == 2 && !nodes.isLine();
        const fenn::analysis::ConvexHull hull(samples.inputs[nodes.x], samples.inputs[nodes.y]);
        Columns beyond(places.size());
        std::vector<std::size_t> nodesBeyond;
        for (std::size_t i = 0; i < nodes.count(); ++i)
        {
            bool isSurrounded = true;
            for (std::size_t v = 0; v < places.size(); ++v)
                isSurrounded = isSurrounded && places[v][i] >= sampleBox[v].low && places[v][i] <= sampleBox[v].high;
            if (isSurrounded && (!hasHull || hull.contains(places[nodes.x][i], places[nodes.y][i])))
                continue;
            nodesBeyond.push_back(i);
            for (std::size_t v = 0; v < places.size(); ++v)
                beyond[v].push_back(places[v][i]);
        }
        std::vector<Reach> reaches(nodes.count(), Reach::Surrounded);
        if (nodesBeyond.empty())
            return reaches;
        const std::vector<bool> areWithinRange = model.findWithinRange(beyond);
        const Reach within = hasHull || nodes.isLine() ? Reach::Extrapolated : Reach::Surrounded;
        for (std::size_t i = 0; i < nodesBeyond.size(); ++i)
            reaches[nodesBeyond[i]] = areWithinRange[i] ? within : Reach::OutOfReach;
        return reaches;
    }

    /// Samples or targets that belong into a panel, evenly thinned where they are very many.
    std::vector<std::size_t> findNear(const PanelNodes& nodes, const Columns& places) const
    {
        std::vector<std::size_t> inside;
        for (std::size_t i = 0; i < places.front().size(); ++i)
        {
            bool isInside = true;
            for (std::size_t v = 0; v < places.size() && isInside; ++v)
            {
                const double value = places[v][i];
                const bool isAcross = v == nodes.x;
                if (isAcross || v == nodes.y)
                {
                    const std::vector<double>& along = isAcross ? nodes.xNodes : nodes.yNodes;
                    isInside = value >= along.front() && value <= along.back();
                }
                else
                    isInside = std::fabs(value - nodes.fixedValues[v]) <=
                               sliceHalfThickness * (sampleBox[v].high - sampleBox[v].low);
            }
            if (isInside)
                inside.push_back(i);
        }
        const std::size_t step = inside.size() / mostSamplesDrawn + 1;
        std::vector<std::size_t> drawn;
        for (std::size_t i = 0; i < inside.size(); i += step)
            drawn.push_back(inside[i]);
        return drawn;
    }

    /// "depth = 316 m": where the panel lies, if that is a question.
    std::string describePlace(const PanelNodes& nodes) const
    {
        std::string text;
        for (std::size_t v = 0; v < samples.inputs.size(); ++v)
        {
            if (v == nodes.x || v == nodes.y)
                continue;
            const QuantityName input = nameQuantity(samples.inputNames[v], units.ofInputs);
            text += (text.empty() ? "" : ", ") + input.name + " = " + formatFigure(nodes.fixedValues[v]) +
                    behindDistance(input.unit);
        }
        return text;
    }

    const SampleTable& samples;
    const SurfaceOptions& options;
    const SurfaceUnits& units;
    const std::vector<PredictionColumn>& columns;
    const Columns& targets;
    const SurfaceModel& model;
    std::vector<AxisRange> sampleBox;
    Columns targetValues; // empty: no targets to draw
};

} // namespace

SurfacePicture::SurfacePicture(const SampleTable& samples_, const SurfaceOptions& options_, SurfaceUnits units_,
                               const std::vector<PredictionColumn>& tableColumns, const GridSpec* grid_,
                               std::uint64_t firstNode)
    : samples(samples_), options(options_), units(std::move(units_))
{
    const auto varies = [](const GridAxis& axis)
    {
        return axis.count > 1 && axis.low < axis.high;
    };
    const GridSpec own = grid_ == nullptr ? makeGrid(samples, {}) : GridSpec();
    const GridSpec& shown = grid_ == nullptr ? own : *grid_;
    const bool isLine = std::count_if(shown.axes.begin(), shown.axes.end(), varies) <= 1;
    columns = chooseSurfaceColumns(samples.outputNames, options, isLine);
    for (const PredictionColumn& column : columns)
        columnsOfTable.push_back(findColumn(tableColumns, column));
    isInTable = std::all_of(columnsOfTable.begin(), columnsOfTable.end(),
                            [&](std::size_t column) { return column < tableColumns.size(); });
    if (grid_ != nullptr)
        grid.emplace(*grid_, samples.inputNames, meansOf(samples.inputs), mostPanels, firstNode);
}

void SurfacePicture::collect(const Columns& blockTargets, const Columns& values)
{
    if (!grid)
        targets.collect(blockTargets);
    else if (isInTable)
        grid->collect(values, columnsOfTable);
}

std::string SurfacePicture::describeThinning() const
{
    return grid ? grid->describeThinning() : std::string();
}

void SurfacePicture::draw(const SurfaceModel& model) const
{
    // Two of a kind beside each other, where estimates have their standard errors with them.
    const bool isPaired = options.withStandardErrors;
    Picture picture(isPaired ? 2 : 0, options.title, options.size);
    const Columns& asked = targets.getTargets();
    const SurfaceDrawing drawing(samples, options, units, columns, asked, model);
    const GridNodes nodes =
        grid ? *grid : GridNodes(makeGrid(samples, asked), samples.inputNames, meansOf(samples.inputs), mostPanels, 0);
    for (std::size_t p = 0; p < nodes.getPanels().size(); ++p)
    {
        PanelNodes panel = nodes.getPanels()[p];
        if (!grid) // slices lie at the means themselves, not at the nodes next to them
            panel.fixedValues = meansOf(samples.inputs);
        Columns values;
        if (grid && isInTable)
            values = nodes.getValues(p);
        else
            model.predict(panel.calcTargets(), values);
        drawing.addPanel(picture, panel, values);
    }
    picture.save(options.path);
}

} // namespace krige
