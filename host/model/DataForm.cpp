#include "host/model/DataForm.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string_view>

#include "host/files/CsvReader.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

using fenn::analysis::Interval;

constexpr double infinity = std::numeric_limits<double>::infinity();

std::string_view withoutQuotes(std::string_view text)
{
    text = trimBlanks(text);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        return trimBlanks(text.substr(1, text.size() - 2));
    return text;
}

double parseFinite(const std::string& name, std::string_view text)
{
    double value = 0.0;
    const NumberStatus status = parseNumber(text, value);
    if (status == NumberStatus::Missing)
        throw UsageError(name + ": needs a finite number, not " + quoteForMessage(text));
    if (status != NumberStatus::Ok)
        throw UsageError(name + ": " + describeNumberFault(text, status));
    return value;
}

void takeLogarithms(SampleTable& samples)
{
    for (std::size_t w = 0; w < samples.outputs.size(); ++w)
    {
        std::vector<double>& values = samples.outputs[w];
        for (std::size_t i = 0; i < values.size(); ++i)
        {
            if (!(values[i] > 0.0))
                throw InputError::atColumn(samples.path, samples.lines[i], samples.outputNames[w],
                                           formatNumber(values[i]) +
                                               " has no logarithm: with --transform log every value must be above 0; "
                                               "leave the row out, or the transform");
        }
        values = fenn::analysis::toLogarithms(values);
        samples.outputNames[w] = "ln " + samples.outputNames[w];
    }
}

} // namespace

fenn::analysis::Anisotropy parseAnisotropy(const std::string& name, const std::string& text)
{
    const std::vector<std::string> numbers = splitCsvText(text, name);
    if (numbers.size() != 2)
        throw UsageError(name + ": needs RATIO,ANGLE, not " + quoteForMessage(text));
    const double ratio = parseFinite(name, numbers[0]);
    const double angle = parseFinite(name, numbers[1]);
    if (!(ratio >= 1.0))
        throw UsageError(name + ": the ratio of the longer over the shorter range must be at least 1, not " +
                         quoteForMessage(numbers[0]) + "; turn ANGLE by 90 degrees instead");
    return {ratio, angle};
}

bool parseTransform(const std::string& name, const std::string& text)
{
    const std::string_view word = withoutQuotes(text);
    if (word != "log" && word != "none")
        throw UsageError(name + ": must be log or none, not " + quoteForMessage(text));
    return word == "log";
}

Interval parseClamp(const std::string& name, const std::string& text)
{
    const std::string_view limits = withoutQuotes(text);
    const std::size_t colon = limits.find(':');
    if (colon == std::string_view::npos || limits.find(':', colon + 1) != std::string_view::npos)
        throw UsageError(name + ": needs LO:HI, LO: or :HI, not " + quoteForMessage(text));
    const std::string_view low = trimBlanks(limits.substr(0, colon));
    const std::string_view high = trimBlanks(limits.substr(colon + 1));
    if (low.empty() && high.empty())
        throw UsageError(name + ": needs a limit at least on one side, not " + quoteForMessage(text));
    const Interval interval{low.empty() ? -infinity : parseFinite(name, low),
                            high.empty() ? infinity : parseFinite(name, high)};
    if (interval.lower > interval.upper)
        throw UsageError(name + ": " + quoteForMessage(text) + " ends below where it begins");
    return interval;
}

std::string clampText(const Interval& limits)
{
    if (limits.lower == -infinity && limits.upper == infinity)
        return {};
    return (limits.lower == -infinity ? "" : formatNumber(limits.lower)) + ':' +
           (limits.upper == infinity ? "" : formatNumber(limits.upper));
}

bool hasDataForm(const Settings& settings)
{
    return settings.anisotropy.has_value() || settings.units.areLogarithms;
}

SampleTable inModelForm(const SampleTable& samples, const Settings& settings)
{
    SampleTable result = samples;
    if (settings.anisotropy)
    {
        bringIntoModelForm(result.inputs, settings);
        for (std::size_t i = 0; i < result.lines.size(); ++i)
        {
            if (!std::isfinite(result.inputs[0][i]) || !std::isfinite(result.inputs[1][i]))
                throw InputError::atLine(samples.path, samples.lines[i],
                                         "--anisotropy: the place is too far away to be rotated");
        }
        result.inputNames = {"along the longer range", "across it"};
    }
    if (settings.units.areLogarithms)
        takeLogarithms(result);
    return result;
}

void bringIntoModelForm(std::vector<std::vector<double>>& targets, const Settings& settings)
{
    if (settings.anisotropy)
        settings.anisotropy->apply(targets[0].data(), targets[1].data(), targets[0].size(), targets[0].data(),
                                   targets[1].data());
}

} // namespace krige
