#include "host/reports/Report.h"

#include <cstdio>
#include <ostream>
#include <string>

#include "host/model/ModelFailure.h"
#include "host/text/NumberText.h"

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
}

void Report::modelBuilt(const SampleModel& model, const SampleTable& samples,
                        const fenn::estimation::ModelSettings& settings)
{
    buildingSeconds = takeSeconds();
    if (settings.duplicateTolerance < 0.0)
        stream << "merged: none (no --duplicate-tolerance)\n";
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
    if (settings.duplicateTolerance >= 0.0 || settings.nugget > 0.0)
        return;
    const std::string coincident = describeCoincidentSamples(samples);
    if (!coincident.empty())
        stream << "hint: " << coincident << "; add --duplicate-tolerance 0 to merge them\n";
    takeSeconds(); // looking for them is no part of the estimates' time
}

void Report::answered(const fenn::estimation::EngineReport& engine)
{
    stream << "engine: " << engine.sentence << '\n';
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
