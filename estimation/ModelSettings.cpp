#include "estimation/ModelSettings.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>

#include "surrogatemodel_kriging/MagnitudeGuards.h"

namespace fenn::estimation
{

namespace
{

template <typename T>
[[noreturn]] void reject(const char* rule, T value)
{
    std::ostringstream message;
    message << rule << ", not " << value;
    throw std::invalid_argument(message.str());
}

} // namespace

bool operator==(const ModelSettings& a, const ModelSettings& b)
{
    return a.duplicateTolerance == b.duplicateTolerance && a.scaleFactors == b.scaleFactors &&
           a.driftOrder == b.driftOrder && a.rangeFraction == b.rangeFraction &&
           a.rangeInInputUnits == b.rangeInInputUnits && a.nugget == b.nugget &&
           a.numNearestPoints == b.numNearestPoints;
}

void checkSettings(const ModelSettings& settings, std::size_t numInputVars)
{
    if (std::isnan(settings.duplicateTolerance))
        reject("the duplicate tolerance must be a number", settings.duplicateTolerance);
    if (!settings.scaleFactors.empty() && settings.scaleFactors.size() != numInputVars)
    {
        std::ostringstream rule;
        rule << "there must be no scale factors or " << numInputVars << ", one per input variable";
        reject(rule.str().c_str(), settings.scaleFactors.size());
    }
    for (const double factor : settings.scaleFactors)
    {
        if (!std::isfinite(factor))
            reject("a scale factor must be finite", factor);
    }
    if (settings.driftOrder < 0 || settings.driftOrder > 4)
        reject("the drift order must be 0 to 4", settings.driftOrder);
    if (!std::isfinite(settings.rangeFraction) || settings.rangeFraction < 0.0)
        reject("the range fraction must be finite and at least 0", settings.rangeFraction);
    if (settings.rangeInInputUnits)
    {
        const double range = *settings.rangeInInputUnits;
        if (!std::isfinite(range) || range < 0.0)
            reject("the range in input units must be finite and at least 0", range);
        if (!hasOneScale(settings, numInputVars))
            throw std::invalid_argument("a range in input units needs equal and positive scale factors");
    }
    if (!(settings.nugget >= 0.0 && settings.nugget <= 1.0))
        reject("the nugget must be 0 to 1", settings.nugget);
    if (settings.numNearestPoints < 0)
        reject("the number of nearest points must be 0 (all) or above", settings.numNearestPoints);
}

bool isScalableRange(double range)
{
    return range > effectivelyZero && range < effectivelyInfinite;
}

bool hasOneScale(const ModelSettings& settings, std::size_t numInputVars)
{
    if (numInputVars == 1)
        return true;
    const std::vector<double>& factors = settings.scaleFactors;
    return !factors.empty() && factors[0] > 0.0 &&
           std::all_of(factors.begin(), factors.end(), [&](double factor) { return factor == factors[0]; });
}

bool usesAllPoints(const ModelSettings& settings, std::size_t numPoints)
{
    return settings.numNearestPoints == 0 || static_cast<std::size_t>(settings.numNearestPoints) >= numPoints;
}

} // namespace fenn::estimation
