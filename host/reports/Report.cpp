#include "host/reports/Report.h"

#include <cmath>
#include <cstdio>
#include <ostream>

#include "estimation/SystemInverse.h"
#include "host/model/DataForm.h"
#include "host/model/InputPlaces.h"
#include "host/model/ModelFailure.h"
#include "host/model/SuspiciousValues.h"
#include "host/reports/RangeText.h"
#include "host/targets/TargetSupport.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

std::string formatSeconds(double seconds)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3f s", seconds);
    return text;
}

std::string countOfInt(int count, const char* noun)
{
    return countOf(static_cast<unsigned>(count), noun);
}

} // namespace

Report::Report(std::ostream& stream_) : stream(stream_), stepStart(Clock::now()) {}

double Report::takeSeconds()
{
    const Clock::time_point now = Clock::now();
    const std::chrono::duration<double> step = now - stepStart;
    stepStart = now;
    return step.count();
}

void Report::samplesRead(const SampleTable& samples)
{
    readingSeconds = takeSeconds();
    stream << "samples: " << countOfInt(samples.getNumSamples(), "sample") << " read from " << samples.path << ", "
           << countOf(samples.inputs.size(), "input") << ", " << countOf(samples.outputs.size(), "output") << '\n';
    if (samples.numSkipped > 0)
        stream << "skipped: " << samples.numSkipped << " of "
               << countOf(samples.numSkipped + samples.lines.size(), "row") << " of " << samples.path
               << ", with a missing value\n";
    for (const std::string& warning : warningsOfSamples(samples))
        stream << warning << '\n';
    if (samples.areDegrees)
        stream << "warning: the inputs are longitudes and latitudes, whose degrees are not equally long; "
               << suggestProjection(samples.inputNames, samples.inputs) << '\n';
}

void Report::formUsed(const Settings& settings)
{
    if (settings.anisotropy)
        stream << "anisotropy: the longer range lies at " << formatFigure(settings.anisotropy->getAngle())
               << " degrees from the axis of the first input, " << formatFigure(settings.anisotropy->getRatio())
               << " times the shorter one\n";
    if (settings.units.areLogarithms)
        stream << "transform: the model is one of natural logarithms; their sills and standard errors are theirs\n";
    const std::string limits = clampText(settings.units.limits);
    if (!limits.empty())
        stream << "clamp: estimates are brought into " << limits << '\n';
}

void Report::modelBuilt(const SampleModel& model, const SampleTable& samples,
                        const fenn::estimation::ModelSettings& settings)
{
    buildingSeconds = takeSeconds();
    if (settings.duplicateTolerance < 0.0)
        stream << "merged: none, for --duplicates merge is not given\n";
    else if (model.getNumMergedSamples() == 0)
        stream << "merged: none\n";
    else
        stream << "merged: " << countOfInt(model.getNumMergedSamples(), "sample") << " into "
               << countOfInt(model.getNumAveragedPoints(), "averaged point") << '\n';

    if (model.isGlobal())
        stream << "strategy: global over " << countOfInt(model.getNumPoints(), "point") << '\n';
    else
        stream << "strategy: local over the " << settings.numNearestPoints << " nearest of "
               << countOfInt(model.getNumPoints(), "point") << '\n';

    const std::string tooFew = describeTooFewPointsForDrift(samples, settings);
    if (!tooFew.empty())
        stream << "hint: " << tooFew << '\n';
    sayCondition(model.calcReciprocalCondition());
    coincidentSamples(samples, settings);
    takeSeconds(); // none of this is part of the estimates' time
}

void Report::sayCondition(double reciprocalCondition)
{
    if (std::isnan(reciprocalCondition))
        return;
    char text[32];
    std::snprintf(text, sizeof text, "%.2g", reciprocalCondition);
    stream << "condition: " << text << " (reciprocal; 1e-16 over it is how exactly the system can be solved)\n";
    if (reciprocalCondition < fenn::estimation::smallestReciprocalCondition)
        stream << "warning: the system has no solution that can be relied upon, and so have the estimates\n";
}

void Report::coincidentSamples(const SampleTable& samples, const fenn::estimation::ModelSettings& settings)
{
    const std::string coincident = settings.duplicateTolerance < 0.0 ? describeCoincidentSamples(samples) : "";
    if (coincident.empty())
        return;
    if (settings.nugget > 0.0)
        stream << "note: " << coincident << " and are taken as repeated measurements, for there is a nugget\n";
    else
        stream << "warning: " << coincident << "; --duplicates keep goes on, but estimates mean little then\n";
}

void Report::sillsUsed(const std::vector<std::string>& outputNames, const std::vector<OutputSill>& sills)
{
    buildingSeconds += takeSeconds();
    for (std::size_t output = 0; output < sills.size(); ++output)
        stream << "sill: of " << nameForTable(outputNames[output]) << ' ' << describeSill(sills[output]) << '\n';
}

void Report::sillsOfFolds(const std::vector<std::string>& outputNames,
                          const std::vector<std::vector<OutputSill>>& sills)
{
    for (std::size_t output = 0; output < outputNames.size(); ++output)
    {
        std::vector<OutputSill> ofOutput;
        for (const std::vector<OutputSill>& ofFold : sills)
            ofOutput.push_back(ofFold[output]);
        stream << "sill: of " << nameForTable(outputNames[output]) << ' ' << describeSillsOfFolds(ofOutput) << '\n';
    }
}

void Report::variancesRejected(std::uint64_t count, std::uint64_t numTargets)
{
    if (count > 0)
        stream << "hint: " << count << " of " << countOf(numTargets, "target") << (count == 1 ? " has" : " have")
               << " a Kriging variance below 0: nan stands for it and for what is made of it; the spherical model does "
                  "not suit so many inputs, or samples are too near to each other for this range and nugget\n";
}

void Report::rangeUsed(const SampleTable& samples, const Settings& settings, const std::string& units)
{
    stream << "range: " << describeRange(samples, settings, units) << '\n';
}

void Report::supported(const TargetSupport& support)
{
    stream << "support: " << support.describe() << '\n';
    for (const std::string& taken : support.describeTaken())
        stream << "limit: " << taken << ": nan is given there\n";
    if (support.areAllUnsupported())
        stream << "warning: " << support.describeAllUnsupported() << '\n';
}

void Report::masked(const std::string& maskPath, std::uint64_t numTargets)
{
    stream << "mask: " << countOf(numTargets, "target") << " outside " << maskPath << (numTargets == 1 ? " is" : " are")
           << " not estimated: nan is given there\n";
}

void Report::answered(const fenn::estimation::EngineReport& engine)
{
    stream << "engine: " << engine.sentence << '\n';
}

void Report::pictureThinned(const std::string& text)
{
    if (!text.empty())
        stream << "picture: " << text << '\n';
}

void Report::finished(std::uint64_t numTargets, std::uint64_t numWithoutEstimate, double librarySeconds)
{
    const double estimatingSeconds = takeSeconds();
    if (numWithoutEstimate > 0)
        stream << "missing: " << numWithoutEstimate << " of " << countOf(numTargets, "target")
               << (numWithoutEstimate == 1 ? " lacks" : " lack") << " a coordinate: nan is given there\n";
    stream << "time: " << formatSeconds(readingSeconds + buildingSeconds + estimatingSeconds) << " (reading "
           << formatSeconds(readingSeconds) << ", building the model " << formatSeconds(buildingSeconds)
           << ", estimating " << countOf(numTargets, "target") << ' ' << formatSeconds(estimatingSeconds);
    if (librarySeconds >= 0.0)
        stream << ", of which " << formatSeconds(librarySeconds) << " in the library";
    stream << ")\n";
}

} // namespace krige
