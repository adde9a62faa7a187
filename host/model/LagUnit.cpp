#include "host/model/LagUnit.h"

#include <optional>

#include "analysis/BinnedSemivariogram.h"
#include "host/text/HostErrors.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige
{

LagUnit chooseLagUnit(const fenn::ModelParts& parts, LagUnit::Choice choice, const std::string& units)
{
    const std::optional<double> scale = fenn::analysis::commonScale(parts);
    if (choice == LagUnit::Choice::InputUnits && !scale)
        throw UsageError("--lag units: " + suggestOneScale(parts.getNormalizers().size()));
    if (choice == LagUnit::Choice::Normalised || !scale)
        return {};
    return {1.0 / *scale, units.empty() ? "input units" : units};
}

double toNormalisedLag(const fenn::ModelParts& parts, const std::string& option, const Distance& distance)
{
    if (!distance.isInInputUnits)
        return distance.value;
    const std::optional<double> scale = fenn::analysis::commonScale(parts);
    if (!scale)
        throw UsageError(option + " " + formatDistance(distance) + ": " +
                         suggestOneScale(parts.getNormalizers().size()));
    return distance.value * *scale;
}

} // namespace krige
