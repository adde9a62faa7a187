#include "analysis/AnisotropyCoordinates.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace fenn::analysis
{

namespace
{

constexpr double degree = 0.017453292519943295; // in radians
constexpr double stepsPerDegree = 10.0;         // of the angles that are tried

double diagonalOf(const SampleSet& samples)
{
    return std::hypot(samples.calcInputRange(0), samples.calcInputRange(1));
}

} // namespace

AnisotropyCoordinates::AnisotropyCoordinates(const SampleSet& samples_, const SearchSpace& space)
    : samples(samples_), rangeAndNugget(samples, space), largestLog2Ratio(std::log2(space.maxRatio))
{
    if (samples.getNumInputVars() != 2)
        throw std::invalid_argument("an anisotropy has an angle with two input variables only");
    diagonal = diagonalOf(samples);
}

double AnisotropyCoordinates::calcRangeShift(const std::optional<Anisotropy>& anisotropy) const
{
    if (!anisotropy)
        return 0.0;
    const double turned = diagonalOf(anisotropy->apply(samples));
    return turned > 0.0 ? std::log2(std::sqrt(anisotropy->getRatio()) * (diagonal / turned)) : 0.0;
}

std::vector<double> AnisotropyCoordinates::toCoordinates(const SettingsWithAnisotropy& settings) const
{
    const double size = settings.anisotropy ? std::log2(settings.anisotropy->getRatio()) : 0.0;
    const double doubleAngle = settings.anisotropy ? 2.0 * settings.anisotropy->getAngle() * degree : 0.0;
    return {std::log2(settings.settings.rangeFraction) - calcRangeShift(settings.anisotropy),
            std::sqrt(settings.settings.nugget), size * std::cos(doubleAngle), size * std::sin(doubleAngle)};
}

SettingsWithAnisotropy AnisotropyCoordinates::toSettings(const std::vector<double>& coordinates,
                                                         const ModelSettings& base) const
{
    SettingsWithAnisotropy result;
    const double size = std::min(std::hypot(coordinates[2], coordinates[3]), largestLog2Ratio);
    const double ratio = roundedToThreeDigits(std::exp2(size));
    if (ratio > 1.0)
    {
        const double angle = 0.5 * std::atan2(coordinates[3], coordinates[2]) / degree;
        result.anisotropy = Anisotropy(ratio, std::round(angle * stepsPerDegree) / stepsPerDegree);
    }
    result.settings =
        rangeAndNugget.withRangeAndNugget({coordinates[0] + calcRangeShift(result.anisotropy), coordinates[1]}, base);
    result.settings.scaleFactors = {1.0, 1.0};
    return result;
}

} // namespace fenn::analysis
