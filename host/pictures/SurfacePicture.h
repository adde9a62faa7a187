#ifndef FENN_HOST_PICTURES_SURFACEPICTURE_H
#define FENN_HOST_PICTURES_SURFACEPICTURE_H

#include <functional>
#include <string>
#include <vector>

#include "host/model/SampleTable.h"

namespace krige
{

/// Where one input is drawn from and to, raw units.
struct PictureAxis
{
    double low = 0.0;
    double high = 0.0;
};

/// The box of the samples, one axis per input.
std::vector<PictureAxis> boxOfSamples(const SampleTable& samples);

/// Estimates at targets, one column per input: one column per output, as SampleModel::estimate.
using Estimator =
    std::function<void(const std::vector<std::vector<double>>& targets, std::vector<std::vector<double>>& results)>;

/// Draws the estimates of every output over the box: a line for one input; for two a surface in colours; for more, such
/// surfaces over the pairs of inputs (sixteen panels at most), the other inputs at their means over the samples.
/// Samples are drawn over them; on a slice, those that are no farther from it than a tenth of the box. Where a map of
/// two inputs reaches beyond the convex hull of the samples a dashed line surrounds them: colours span what is within.
///
/// units: of the inputs, named beside each; may be empty. Throws as estimate and Picture::save.
void drawSurface(const std::string& path, const SampleTable& samples, const std::vector<PictureAxis>& box,
                 const std::string& units, const Estimator& estimate);

} // namespace krige

#endif
