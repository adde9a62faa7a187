#include "host/model/SuspiciousValues.h"

#include <algorithm>
#include <limits>

#include "host/text/NumberText.h"

namespace krige
{

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double farInRanges = 3.0;

/// The two least values, and how often the least occurs; the two greatest likewise.
struct Ends
{
    double least = infinity, secondLeast = infinity;
    double greatest = -infinity, secondGreatest = -infinity;
    std::size_t numLeast = 0, numGreatest = 0;
};

/// Of the values above low and below high.
Ends findEnds(const std::vector<double>& values, double low, double high)
{
    Ends ends;
    for (const double value : values)
    {
        if (!(value > low && value < high))
            continue;
        if (value < ends.least)
        {
            ends.secondLeast = ends.least;
            ends.least = value;
            ends.numLeast = 0;
        }
        else if (value > ends.least && value < ends.secondLeast)
            ends.secondLeast = value;
        if (value > ends.greatest)
        {
            ends.secondGreatest = ends.greatest;
            ends.greatest = value;
            ends.numGreatest = 0;
        }
        else if (value < ends.greatest && value > ends.secondGreatest)
            ends.secondGreatest = value;
        ends.numLeast += value == ends.least ? 1 : 0;
        ends.numGreatest += value == ends.greatest ? 1 : 0;
    }
    return ends;
}

/// Such as -99, 9999.9.
bool isOfNines(double value)
{
    std::string digits = formatNumber(value);
    digits.erase(std::remove_if(digits.begin(), digits.end(), [](char c) { return c == '-' || c == '.'; }),
                 digits.end());
    return digits.size() >= 2 && digits.find_first_not_of('9') == std::string::npos;
}

bool isFar(double value, std::size_t count, double distance, double range)
{
    return count >= 2 && range > 0.0 && distance > (isOfNines(value) ? 1.0 : farInRanges) * range;
}

} // namespace

std::vector<SuspiciousValue> findSuspiciousValues(const std::vector<double>& values)
{
    std::vector<SuspiciousValue> found;
    double low = -infinity;
    double high = infinity;
    for (;;)
    {
        const Ends ends = findEnds(values, low, high);
        if (isFar(ends.least, ends.numLeast, ends.secondLeast - ends.least, ends.greatest - ends.secondLeast))
        {
            found.push_back({ends.least, ends.numLeast, ends.secondLeast, ends.greatest});
            low = ends.least;
        }
        else if (isFar(ends.greatest, ends.numGreatest, ends.greatest - ends.secondGreatest,
                       ends.secondGreatest - ends.least))
        {
            found.push_back({ends.greatest, ends.numGreatest, ends.least, ends.secondGreatest});
            high = ends.greatest;
        }
        else
            return found;
    }
}

std::vector<std::string> warningsOfColumn(const std::string& name, const std::vector<double>& values)
{
    std::vector<std::string> warnings;
    for (const SuspiciousValue& suspect : findSuspiciousValues(values))
    {
        const std::string value = formatNumber(suspect.value);
        warnings.push_back("warning: column " + quoteForMessage(name) + ": " + value + " stands in " +
                           std::to_string(suspect.count) + " rows, far from all other values (" +
                           formatNumber(suspect.least) + " to " + formatNumber(suspect.greatest) +
                           "); if it means that there is no value, add --missing " + value);
    }
    return warnings;
}

std::vector<std::string> warningsOfSamples(const SampleTable& samples)
{
    std::vector<std::string> warnings;
    const auto addWarnings = [&](const std::vector<std::string>& names, const std::vector<std::vector<double>>& columns)
    {
        for (std::size_t c = 0; c < columns.size(); ++c)
        {
            const std::vector<std::string> found = warningsOfColumn(names[c], columns[c]);
            warnings.insert(warnings.end(), found.begin(), found.end());
        }
    };
    addWarnings(samples.inputNames, samples.inputs);
    addWarnings(samples.outputNames, samples.outputs);
    return warnings;
}

} // namespace krige
