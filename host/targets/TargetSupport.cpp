#include "host/targets/TargetSupport.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "host/model/DataForm.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige
{

namespace
{

using Columns = std::vector<std::vector<double>>;

/// The target's coordinates; false where one is not finite.
bool takePlace(const Columns& targets, std::size_t t, std::vector<double>& place)
{
    place.clear();
    for (const std::vector<double>& column : targets)
        place.push_back(column[t]);
    return std::all_of(place.begin(), place.end(), [](double coordinate) { return std::isfinite(coordinate); });
}

fenn::estimation::Targets requestOf(const Columns& targets)
{
    fenn::estimation::Targets request;
    for (const std::vector<double>& column : targets)
        request.coords.push_back(column.data());
    request.count = targets.front().size();
    return request;
}

std::string verb(std::uint64_t count, const char* one, const char* many)
{
    return count == 1 ? one : many;
}

} // namespace

double parseLimit(const std::string& option, const std::string& text)
{
    double value = 0.0;
    const NumberStatus status = parseNumber(text, value);
    if (status == NumberStatus::TooLarge || status == NumberStatus::TooSmall)
        throw UsageError(option + ": " + describeNumberFault(text, status));
    if (status != NumberStatus::Ok || !(value > 0.0))
        throw UsageError(option + ": must be a number above 0, not " + quoteForMessage(text));
    return value;
}

TargetSupport::TargetSupport(const SampleTable& samples_, const SampleModel& model, const Settings& settings_,
                             const SupportLimits& limits_)
    : samples(samples_),
      settings(settings_),
      limits(limits_),
      support(model.getParts()),
      unit(model.getParts().getNormalizers().front().getScale()),
      extents(samples_.inputs.size())
{
    if (limits.isWithinHull)
        hull.emplace(samples.inputs[0], samples.inputs[1]);
}

void TargetSupport::count(const Columns& targets)
{
    std::vector<double> place;
    numTargets += targets.front().size();
    for (std::size_t t = 0; t < targets.front().size(); ++t)
    {
        if (!takePlace(targets, t, place))
            continue;
        for (std::size_t v = 0; v < place.size(); ++v)
        {
            Extent& extent = extents[v];
            extent.low = numWithPlace == 0 ? place[v] : std::min(extent.low, place[v]);
            extent.high = numWithPlace == 0 ? place[v] : std::max(extent.high, place[v]);
        }
        ++numWithPlace;
    }
    Columns formed = targets;
    bringIntoModelForm(formed, settings);
    const fenn::analysis::SupportCounts more = support.count(requestOf(formed));
    counts.numOutsideBox += more.numOutsideBox;
    counts.numUnsupported += more.numUnsupported;
}

void TargetSupport::addMasks(Predictor& predictor, bool isCounted)
{
    const auto mask = [&](std::uint64_t& numTaken, auto isBeyond)
    {
        predictor.addMask(
            [&numTaken, isCounted, isBeyond](const Columns& targets, const AnsweredTargets& answers,
                                             std::vector<bool>& isMasked)
            {
                std::vector<double> place;
                for (std::size_t t = 0; t < isMasked.size(); ++t)
                {
                    if (!takePlace(targets, t, place) || !isBeyond(place, answers, t))
                        continue;
                    isMasked[t] = true;
                    numTaken += isCounted ? 1 : 0;
                }
            });
    };
    if (limits.maxDistance)
        mask(numTooFar,
             [this](const std::vector<double>& place, const AnsweredTargets&, std::size_t) { return isTooFar(place); });
    if (hull)
        mask(numOutsideHull, [this](const std::vector<double>& place, const AnsweredTargets&, std::size_t)
             { return !hull->contains(place[0], place[1]); });
    if (limits.maxStandardError)
        mask(numTooUncertain,
             [this](const std::vector<double>&, const AnsweredTargets& answers, std::size_t t)
             {
                 return std::any_of(answers.standardErrors.begin(), answers.standardErrors.end(),
                                    [&](const std::vector<double>& errors)
                                    { return !(errors[t] <= *limits.maxStandardError); });
             });
}

std::vector<bool> TargetSupport::findWithinRange(const Columns& targets) const
{
    Columns formed = targets;
    bringIntoModelForm(formed, settings);
    std::vector<bool> areWithin;
    std::vector<double> place;
    for (std::size_t t = 0; t < formed.front().size(); ++t)
        areWithin.push_back(takePlace(formed, t, place) && support.isWithinRange(place.data()));
    return areWithin;
}

bool TargetSupport::isTooFar(const std::vector<double>& place) const
{
    Columns formed;
    for (const double coordinate : place)
        formed.push_back({coordinate});
    bringIntoModelForm(formed, settings);
    double distance = 0.0;
    support.calcDistancesToNearest(requestOf(formed), &distance);
    return !(distance <= *limits.maxDistance * unit);
}

std::string TargetSupport::describe() const
{
    if (counts.numOutsideBox == 0)
        return "no target lies outside the box of the samples";
    std::string text = std::to_string(counts.numOutsideBox) + " of " + countOf(numTargets, "target") +
                       verb(counts.numOutsideBox, " lies", " lie") + " outside the box of the samples, ";
    if (counts.numUnsupported == 0)
        return text + "none of them beyond the range of every sample";
    return text + std::to_string(counts.numUnsupported) +
           " of them beyond the range of every sample: unsupported, the drift alone answers there";
}

std::vector<std::string> TargetSupport::describeTaken() const
{
    std::vector<std::string> lines;
    if (limits.maxDistance)
        lines.push_back(countOf(numTooFar, "target") + " farther than " + formatNumber(*limits.maxDistance) +
                        " from every sample");
    if (limits.isWithinHull)
        lines.push_back(countOf(numOutsideHull, "target") + " outside the convex hull of the samples");
    if (limits.maxStandardError)
        lines.push_back(countOf(numTooUncertain, "target") + " with a standard error above " +
                        formatNumber(*limits.maxStandardError));
    return lines;
}

std::string TargetSupport::describeAllUnsupported() const
{
    std::ostringstream text;
    text << (numWithPlace == 1 ? "the target is unsupported: it lies" : "all ")
         << (numWithPlace == 1 ? "" : countOf(numWithPlace, "target") + " are unsupported: they lie")
         << " outside the box of the samples and beyond the range of every sample\n\n";
    std::vector<std::vector<std::string>> rows{{"input", "samples from", "to", "targets from", "to"}};
    for (std::size_t v = 0; v < extents.size(); ++v)
    {
        const auto [low, high] = std::minmax_element(samples.inputs[v].begin(), samples.inputs[v].end());
        rows.push_back({nameForTable(samples.inputNames[v]), formatFigure(*low), formatFigure(*high),
                        formatFigure(extents[v].low), formatFigure(extents[v].high)});
    }
    printTable(text, rows);
    text << "\nAre columns swapped, or the units others?";
    return text.str();
}

} // namespace krige
