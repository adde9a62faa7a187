#ifndef FENN_HOST_REPORTS_REPORT_H
#define FENN_HOST_REPORTS_REPORT_H

#include <chrono>
#include <cstdint>
#include <iosfwd>

#include "estimation/ModelSettings.h"
#include "host/model/SampleModel.h"
#include "host/model/SampleTable.h"

namespace krige
{

/// Says on a stream (standard error) what a run did, one line each: samples read, points merged, strategy, time.
class Report
{
public:
    explicit Report(std::ostream& stream_);

    void samplesRead(const SampleTable& samples);

    /// Also hints at what the library takes but cannot do well with: coincident samples, too few points for the drift.
    void modelBuilt(const SampleModel& model, const SampleTable& samples,
                    const fenn::estimation::ModelSettings& settings);

    /// numWithoutEstimate: targets with a missing coordinate. librarySeconds: what of the estimates' time went by
    /// within the library; negative when nobody looked.
    void finished(std::uint64_t numTargets, std::uint64_t numWithoutEstimate = 0, double librarySeconds = -1.0);

private:
    using Clock = std::chrono::steady_clock;

    double takeSeconds();

    std::ostream& stream;
    Clock::time_point stepStart;
    double readingSeconds = 0.0;
    double buildingSeconds = 0.0;
};

} // namespace krige

#endif
