#ifndef FENN_HOST_GDAL_RASTERFILE_H
#define FENN_HOST_GDAL_RASTERFILE_H

#include <string>

#include <gdal_priv.h>

#include "host/geo/GeoModule.h"

namespace krige::gdal
{

/// A raster that is being written: a tiled GeoTIFF, packed without loss, from which finish copies where another format
/// was asked for. Cells without a value are NaN; in formats whose readers know no NaN they are -9999, and a value of
/// just that throws InputError.
class RasterFile final : public RasterOutput
{
public:
    explicit RasterFile(const RasterRequest& request_);
    void write(std::size_t band, const RasterWindow& window, const double* values) override;
    void finish() override;

private:
    void create();
    void copy();
    bool isCopied() const;

    RasterRequest request;
    double noData;
    GDALDatasetUniquePtr dataset;
    std::vector<double> marked; // kept: it grows to a window's size once
};

} // namespace krige::gdal

#endif
