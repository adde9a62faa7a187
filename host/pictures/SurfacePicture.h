#ifndef FENN_HOST_PICTURES_SURFACEPICTURE_H
#define FENN_HOST_PICTURES_SURFACEPICTURE_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/model/SampleTable.h"
#include "host/pictures/MapPanel.h"
#include "host/pictures/PictureNodes.h"
#include "host/pictures/PictureOptions.h"
#include "host/targets/PredictionColumns.h"

namespace krige
{

/// What a picture asks of a model; targets: one column per input.
struct SurfaceModel
{
    /// Replaces values by one column per column of SurfacePicture::getColumns.
    std::function<void(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& values)>
        predict;

    /// Which targets lie within the range of some sample.
    std::function<std::vector<bool>(const std::vector<std::vector<double>>& targets)> findWithinRange;
};

/// What the picture's words need to know of the model.
struct SurfaceUnits
{
    std::string ofInputs;       // may be empty
    double coverage = 0.0;      // of intervals, in percent
    bool areLogarithms = false; // standard errors are those of the logarithms
};

/// Draws estimates, or what belongs to them, of every output: over one input a line, with the interval as a band; over
/// two a map; over more, maps over the pairs of inputs (sixteen panels at most), the other inputs at their means over
/// the samples. Samples are drawn over them; on a slice, those that are no farther from it than a tenth of the box.
///
/// Of a grid it shows the nodes that are estimated, as they pass by (GridNodes). For targets of a file it has nodes of
/// its own over the box of samples and targets, and draws the targets.
///
/// A map of two inputs is hatched beyond the convex hull of the samples, a slice nowhere; both are grey where samples
/// say nothing.
class SurfacePicture
{
public:
    /// Refers to the samples and the options, which must outlive it. tableColumns: what is estimated in any case.
    /// grid_: whose nodes are estimated from firstNode on; nullptr: the targets are those of a file.
    SurfacePicture(const SampleTable& samples_, const SurfaceOptions& options_, SurfaceUnits units_,
                   const std::vector<PredictionColumn>& tableColumns, const GridSpec* grid_, std::uint64_t firstNode);

    /// The columns that the picture shows.
    const std::vector<PredictionColumn>& getColumns() const
    {
        return columns;
    }

    /// The next block of targets and the table's columns there.
    void collect(const std::vector<std::vector<double>>& targets, const std::vector<std::vector<double>>& values);

    /// "shows 500 of 20000 nodes along 'x'"; empty where it shows all nodes of a grid.
    std::string describeThinning() const;

    /// Throws as the model and Picture::save.
    void draw(const SurfaceModel& model) const;

private:
    const SampleTable& samples;
    const SurfaceOptions& options;
    SurfaceUnits units;
    std::vector<PredictionColumn> columns;
    std::vector<std::size_t> columnsOfTable; // per column
    bool isInTable = false;                  // every column; otherwise the nodes are estimated once more
    std::optional<GridNodes> grid;
    TargetSample targets; // of a file
};

} // namespace krige

#endif
