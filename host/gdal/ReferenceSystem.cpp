#include "host/gdal/ReferenceSystem.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "host/gdal/GdalErrors.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige::gdal
{

namespace
{

class CrsProjection final : public Projection
{
public:
    CrsProjection(const std::string& from, const std::string& to)
    {
        const OGRSpatialReference source = parseCrs(from);
        const OGRSpatialReference target = parseCrs(to);
        transformation.reset(OGRCreateCoordinateTransformation(&source, &target));
        if (!transformation)
            throwFailure(describe(source), "no way is known from here to " + describe(target));
    }

    std::size_t apply(std::vector<double>& x, std::vector<double>& y) const override
    {
        constexpr double nan = std::numeric_limits<double>::quiet_NaN();
        constexpr std::size_t portion = 1U << 20; // GDAL counts with an int
        std::size_t numWithout = 0;
        std::vector<int> succeeded;
        for (std::size_t first = 0; first < x.size(); first += portion)
        {
            const std::size_t count = std::min(portion, x.size() - first);
            succeeded.assign(count, 0);
            transformation->Transform(static_cast<int>(count), &x[first], &y[first], nullptr, succeeded.data());
            for (std::size_t i = 0; i < count; ++i)
            {
                if (succeeded[i] != 0)
                    continue;
                x[first + i] = y[first + i] = nan;
                ++numWithout;
            }
        }
        takeFailure(); // of single places: they are counted
        return numWithout;
    }

private:
    std::unique_ptr<OGRCoordinateTransformation> transformation;
};

/// What GeoPackages say where nothing is known.
bool isUndefined(const OGRSpatialReference& crs)
{
    const char* const name = crs.GetName();
    return name && std::string(name).rfind("Undefined ", 0) == 0;
}

} // namespace

OGRSpatialReference parseCrs(const std::string& text)
{
    OGRSpatialReference crs;
    const OGRErr status =
        crs.SetFromUserInput(text.c_str(), OGRSpatialReference::SET_FROM_USER_INPUT_LIMITATIONS_get());
    takeFailure();
    if (status != OGRERR_NONE)
        throw UsageError(quoteForMessage(text) +
                         " is no coordinate reference system that is known here; write one such as EPSG:28992");
    crs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    return crs;
}

std::string textOf(const OGRSpatialReference* crs)
{
    if (!crs || crs->IsEmpty() || isUndefined(*crs))
        return {};
    char* text = nullptr;
    const char* const options[] = {"FORMAT=WKT2_2019", nullptr};
    crs->exportToWkt(&text, options);
    const std::string copy = text ? text : "";
    CPLFree(text);
    return copy;
}

std::string describe(const OGRSpatialReference& crs)
{
    const char* const authority = crs.GetAuthorityName(nullptr);
    const char* const code = crs.GetAuthorityCode(nullptr);
    if (authority && code)
        return std::string(authority) + ':' + code;
    const char* const name = crs.GetName();
    return name ? name : "a coordinate reference system without a name";
}

bool areSame(const OGRSpatialReference& first, const OGRSpatialReference& second)
{
    const char* const options[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES",
                                   "CRITERION=EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS", nullptr};
    return first.IsSame(&second, options) != 0;
}

std::unique_ptr<Projection> makeProjection(const std::string& from, const std::string& to)
{
    return std::make_unique<CrsProjection>(from, to);
}

} // namespace krige::gdal
