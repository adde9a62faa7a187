#ifndef FENN_HOST_GDAL_REFERENCESYSTEM_H
#define FENN_HOST_GDAL_REFERENCESYSTEM_H

#include <memory>
#include <string>

#include <ogr_spatialref.h>

#include "host/geo/GeoModule.h"

namespace krige::gdal
{

/// Reads EPSG:28992, well-known text and the like; never a file or an address. Coordinates come as maps have them,
/// easting or longitude first, whatever the authority says. Throws UsageError.
OGRSpatialReference parseCrs(const std::string& text);

/// Text that parseCrs reads; empty for null and for one that says only that nothing is known.
std::string textOf(const OGRSpatialReference* crs);

/// EPSG:28992, or the name where it has no such code.
std::string describe(const OGRSpatialReference& crs);

bool areSame(const OGRSpatialReference& first, const OGRSpatialReference& second);

/// Throws InputError when there is no way from one to the other.
std::unique_ptr<Projection> makeProjection(const std::string& from, const std::string& to);

} // namespace krige::gdal

#endif
