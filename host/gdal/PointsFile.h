#ifndef FENN_HOST_GDAL_POINTSFILE_H
#define FENN_HOST_GDAL_POINTSFILE_H

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include "host/geo/GeoModule.h"

namespace krige::gdal
{

/// A layer of points that is being written, in one transaction where the format has them.
class PointsFile final : public PointsOutput
{
public:
    explicit PointsFile(const PointsRequest& request_);
    void write(double x, double y, const std::vector<double>& numbers, const std::vector<std::string>& texts) override;
    void finish() override;

private:
    PointsRequest request;
    GDALDatasetUniquePtr dataset;
    OGRLayer* layer = nullptr; // of the dataset
};

} // namespace krige::gdal

#endif
