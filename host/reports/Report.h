#ifndef FENN_HOST_REPORTS_REPORT_H
#define FENN_HOST_REPORTS_REPORT_H

#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "estimation/Estimator.h"
#include "estimation/ModelSettings.h"
#include "host/model/OutputSill.h"
#include "host/model/SampleModel.h"
#include "host/model/SampleTable.h"

namespace krige
{

class TargetSupport;

/// Says on a stream (standard error) what a run did, one line each: samples read, points merged, strategy, engine,
/// time.
class Report
{
public:
    explicit Report(std::ostream& stream_);

    void samplesRead(const SampleTable& samples);

    /// What the model works on, where that is something else than what stands in the files; and limits of estimates.
    void formUsed(const Settings& settings);

    /// Also gives the condition of a global system, and hints about samples that make poor estimates: coincident ones,
    /// or too few for the drift.
    void modelBuilt(const SampleModel& model, const SampleTable& samples,
                    const fenn::estimation::ModelSettings& settings);

    /// The sill of each output, beside its sample variance. The time since the last step counts for building the model.
    void sillsUsed(const std::vector<std::string>& outputNames, const std::vector<OutputSill>& sills);

    /// sills: per fold of a cross-validation, per output.
    void sillsOfFolds(const std::vector<std::string>& outputNames, const std::vector<std::vector<OutputSill>>& sills);

    /// Estimates whose variance is below 0 by more than rounding; nothing for none.
    void variancesRejected(std::uint64_t count, std::uint64_t numTargets);
    /// A note where coincident samples count as repeated measurements, a warning where they are kept without a nugget.
    void coincidentSamples(const SampleTable& samples, const fenn::estimation::ModelSettings& settings);

    /// How far the range of the model reaches, in units of the inputs; call where these samples, in the form of the
    /// model, and settings make one.
    void rangeUsed(const SampleTable& samples, const Settings& settings, const std::string& units);

    /// Targets outside the samples, and what limits took of the predictions; a warning where all are unsupported.
    void supported(const TargetSupport& support);

    /// What a picture shows of a grid with more nodes than it resolves; nothing for an empty text.
    void pictureThinned(const std::string& text);

    /// Targets that --mask left out.
    void masked(const std::string& maskPath, std::uint64_t numTargets);

    /// Which engine answered, and how far its estimates can be from the exact ones.
    void answered(const fenn::estimation::EngineReport& engine);

    /// numWithoutEstimate: targets with a missing coordinate. librarySeconds: the part of the estimates' time that the
    /// library took; negative when it was not measured.
    void finished(std::uint64_t numTargets, std::uint64_t numWithoutEstimate = 0, double librarySeconds = -1.0);

private:
    using Clock = std::chrono::steady_clock;

    double takeSeconds();
    void sayCondition(double reciprocalCondition);

    std::ostream& stream;
    Clock::time_point stepStart;
    double readingSeconds = 0.0;
    double buildingSeconds = 0.0;
};

} // namespace krige

#endif
