#include "analysis/SearchSpace.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "analysis/Folds.h"
#include "estimation/SystemSize.h"

namespace fenn::analysis
{

namespace
{

constexpr std::size_t maxGlobalSamples = 1000;
constexpr std::size_t numFixedCoordinates = 2; // range fraction and nugget

constexpr std::size_t maxSpacings = 500;
constexpr std::uint64_t choiceSeed = 1; // of the samples whose neighbours are sought

constexpr double largestLikeness = 10.0; // of the inputs' ranges

// The shortest range that is tried is no longer, however few samples there are.
constexpr double largestShortRange = 0.25;

void check(bool isFine, const char* rule)
{
    if (!isFine)
        throw std::invalid_argument(rule);
}

} // namespace

double roundedToThreeDigits(double value)
{
    char text[32];
    const std::to_chars_result written = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 3);
    double result = value;
    std::from_chars(text, written.ptr, result);
    return result;
}

double calcSpacing(const SampleSet& samples)
{
    const std::size_t numSamples = samples.getNumSamples();
    std::vector<const std::vector<double>*> columns;
    std::vector<double> weights;
    for (std::size_t v = 0; v < samples.getNumInputVars(); ++v)
    {
        const double range = samples.calcInputRange(v);
        if (!estimation::isScalableRange(range))
            continue;
        columns.push_back(&samples.getInput(v));
        weights.push_back(1.0 / range);
    }
    std::vector<std::size_t> chosen = shuffledIndices(numSamples, choiceSeed);
    chosen.resize(std::min(numSamples, maxSpacings));
    std::vector<double> nearest;
    std::vector<double> distances(numSamples);
    for (const std::size_t i : chosen)
    {
        std::fill(distances.begin(), distances.end(), 0.0);
        for (std::size_t v = 0; v < columns.size(); ++v)
        {
            const std::vector<double>& column = *columns[v];
            for (std::size_t j = 0; j < numSamples; ++j)
            {
                const double difference = (column[j] - column[i]) * weights[v];
                distances[j] += difference * difference;
            }
        }
        double least = std::numeric_limits<double>::infinity();
        for (const double distance : distances)
            least = distance > 0.0 ? std::min(least, distance) : least;
        if (std::isfinite(least))
            nearest.push_back(std::sqrt(least));
    }
    if (nearest.empty())
        return 0.0;
    const auto middle = nearest.begin() + static_cast<std::ptrdiff_t>(nearest.size() / 2);
    std::nth_element(nearest.begin(), middle, nearest.end());
    return *middle / std::sqrt(static_cast<double>(columns.size()));
}

SearchSpace defaultSearchSpace(const SampleSet& samples)
{
    const auto numSamples = static_cast<int>(samples.getNumSamples());
    SearchSpace space;
    space.numNearestPoints.clear();
    int smallestSystem = numSamples;
    if (samples.getNumSamples() <= maxGlobalSamples)
        space.numNearestPoints.push_back(0);
    for (const int numNearest : {16, 32})
    {
        if (numNearest * 2 <= numSamples && numNearest > static_cast<int>(samples.getNumInputVars()))
            space.numNearestPoints.push_back(numNearest);
    }
    if (samples.getNumSamples() > maxGlobalSamples)
        smallestSystem = 32;
    space.driftOrders.clear();
    for (const int driftOrder : {0, 1, 2})
    {
        if (driftOrder == 0 || estimation::countDriftTerms(driftOrder, samples.getNumInputVars()) * 4 <= smallestSystem)
            space.driftOrders.push_back(driftOrder);
    }
    const double spacing = calcSpacing(samples);
    if (spacing > 0.0)
        space.minRangeFraction = std::clamp(2.0 * spacing, 1e-6, largestShortRange);
    return space;
}

void checkSearchSpace(const SearchSpace& space)
{
    for (const int driftOrder : space.driftOrders)
        check(driftOrder >= 0 && driftOrder <= 4, "drift orders to search must be 0 to 4");
    for (const int numNearest : space.numNearestPoints)
        check(numNearest >= 0, "numbers of nearest points to search must not be negative");
    check(space.minRangeFraction > 0.0 && space.minRangeFraction <= space.maxRangeFraction &&
              std::isfinite(space.maxRangeFraction),
          "range fractions to search must be finite, above 0 and the lower one first");
    check(space.minNugget >= 0.0 && space.minNugget <= space.maxNugget && space.maxNugget <= 1.0,
          "nuggets to search must be 0 to 1 and the lower one first");
    check(space.maxAnisotropy >= 1.0 && std::isfinite(space.maxAnisotropy),
          "the largest anisotropy to search must be finite and at least 1");
    check(space.maxRatio >= 1.0 && std::isfinite(space.maxRatio),
          "the largest ratio to search must be finite and at least 1");
    check(space.maxRatio == 1.0 || space.maxAnisotropy == 1.0,
          "scales are not searched beside the ratio of an anisotropy");
}

SettingsCoordinates::SettingsCoordinates(const SampleSet& samples, const SearchSpace& space_) : space(space_)
{
    checkSearchSpace(space);
    for (std::size_t v = 0; v < samples.getNumInputVars(); ++v)
    {
        const double range = samples.calcInputRange(v);
        ranges.push_back(estimation::isScalableRange(range) ? range : 1.0);
    }
    const auto [least, greatest] = std::minmax_element(ranges.begin(), ranges.end());
    areAlike = *greatest <= largestLikeness * *least;
}

std::size_t SettingsCoordinates::getNumCoordinates() const
{
    return numFixedCoordinates + (space.maxAnisotropy > 1.0 ? ranges.size() - 1 : 0);
}

std::vector<double> SettingsCoordinates::toCoordinates(const ModelSettings& settings) const
{
    std::vector<double> coordinates{std::log2(settings.rangeFraction), std::sqrt(settings.nugget)};
    const auto normalisedRange = [&](std::size_t v)
    {
        const double factor = settings.scaleFactors.empty() ? -1.0 : settings.scaleFactors[v];
        return factor > 0.0 ? factor * ranges[v] : -2.0 * factor;
    };
    for (std::size_t v = 1; numFixedCoordinates + v - 1 < getNumCoordinates(); ++v)
        coordinates.push_back(std::log2(normalisedRange(v) / normalisedRange(0)));
    return coordinates;
}

ModelSettings SettingsCoordinates::withRangeAndNugget(const std::vector<double>& coordinates,
                                                      const ModelSettings& base) const
{
    ModelSettings settings = base;
    settings.rangeFraction =
        std::clamp(roundedToThreeDigits(std::exp2(coordinates[0])), space.minRangeFraction, space.maxRangeFraction);
    const double rootOfNugget = std::max(coordinates[1], 0.0);
    settings.nugget = std::clamp(roundedToThreeDigits(rootOfNugget * rootOfNugget), space.minNugget, space.maxNugget);
    // A smaller nugget has no effect, and people write 0.
    if (settings.nugget < 1e-4 && space.minNugget == 0.0)
        settings.nugget = 0.0;
    return settings;
}

ModelSettings SettingsCoordinates::toSettings(const std::vector<double>& coordinates, const ModelSettings& base) const
{
    ModelSettings settings = withRangeAndNugget(coordinates, base);
    const std::vector<double> baseCoordinates = toCoordinates(base);
    if (std::equal(coordinates.begin() + numFixedCoordinates, coordinates.end(),
                   baseCoordinates.begin() + numFixedCoordinates))
        return settings;
    settings.scaleFactors.assign(1, 1.0);
    const double limit = std::log2(space.maxAnisotropy);
    for (std::size_t v = 1; v < ranges.size(); ++v)
    {
        const double ratio = std::exp2(std::clamp(coordinates[numFixedCoordinates + v - 1], -limit, limit));
        settings.scaleFactors.push_back(roundedToThreeDigits(ratio * (ranges[0] / ranges[v])));
    }
    return settings;
}

bool SettingsCoordinates::withRawScales(const ModelSettings& base, ModelSettings& settings) const
{
    settings = base;
    settings.scaleFactors.assign(ranges.size(), 1.0);
    return variesScales();
}

bool SettingsCoordinates::variesScales() const
{
    return getNumCoordinates() > numFixedCoordinates;
}

std::size_t SettingsCoordinates::countChosenScales(const ModelSettings& settings) const
{
    const std::vector<double>& factors = settings.scaleFactors;
    const bool isAutomatic = std::all_of(factors.begin(), factors.end(), [](double factor) { return factor == -1.0; });
    if (isAutomatic)
        return areAlike ? ranges.size() - 1 : 0;
    const bool areEqual = std::all_of(factors.begin(), factors.end(),
                                      [&](double factor) { return factor > 0.0 && factor == factors[0]; });
    return areEqual ? 0 : ranges.size() - 1;
}

} // namespace fenn::analysis
