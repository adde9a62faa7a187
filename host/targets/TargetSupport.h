#ifndef FENN_HOST_TARGETS_TARGETSUPPORT_H
#define FENN_HOST_TARGETS_TARGETSUPPORT_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "analysis/ConvexHull.h"
#include "analysis/Support.h"
#include "host/model/SampleModel.h"
#include "host/model/SampleTable.h"
#include "host/model/Settings.h"
#include "host/targets/Predictor.h"

namespace krige
{

/// Beyond which targets get nan: --max-distance, --hull and --max-stderr.
struct SupportLimits
{
    std::optional<double> maxDistance; // from the nearest sample, in units of the first input
    bool isWithinHull = false;         // of the samples, in two inputs
    std::optional<double> maxStandardError;

    bool isAny() const
    {
        return maxDistance || isWithinHull || maxStandardError;
    }
};

/// Counts which targets of a job the samples say something of, and takes the predictions of those beyond the limits.
///
/// A target is unsupported when it lies outside the box of the samples and beyond the range of every sample: it gets
/// the drift and nothing else.
class TargetSupport
{
public:
    /// Refers to samples, model and settings, which must outlive it.
    TargetSupport(const SampleTable& samples_, const SampleModel& model, const Settings& settings_,
                  const SupportLimits& limits_);

    /// Adds targets to the counts: one column per input, as they stand in the file.
    void count(const std::vector<std::vector<double>>& targets);

    /// Adds the limits to a predictor, which must not outlive this. isCounted: whether its targets count as taken.
    void addMasks(Predictor& predictor, bool isCounted);

    /// Which targets lie within the range of some sample: one column per input, as they stand in the file.
    std::vector<bool> findWithinRange(const std::vector<std::vector<double>>& targets) const;

    bool areAllUnsupported() const
    {
        return counts.numUnsupported > 0 && counts.numUnsupported == numWithPlace;
    }

    /// "12 of 400 targets lie outside the box of the samples, 3 of them beyond the range of every sample".
    std::string describe() const;

    /// What the limits took, one line each: "25 targets farther than 10 from every sample"; empty for nothing.
    std::vector<std::string> describeTaken() const;

    /// That all are unsupported, with the boxes of samples and targets side by side.
    std::string describeAllUnsupported() const;

private:
    struct Extent
    {
        double low = 0.0;
        double high = 0.0;
    };

    bool isTooFar(const std::vector<double>& place) const;

    const SampleTable& samples;
    const Settings& settings;
    SupportLimits limits;
    fenn::analysis::Support support;
    double unit; // of the first input, normalised
    std::optional<fenn::analysis::ConvexHull> hull;
    fenn::analysis::SupportCounts counts;
    std::uint64_t numTargets = 0;
    std::uint64_t numWithPlace = 0; // all coordinates finite
    std::uint64_t numTooFar = 0;
    std::uint64_t numOutsideHull = 0;
    std::uint64_t numTooUncertain = 0;
    std::vector<Extent> extents; // of the targets
};

/// A number above 0. Throws UsageError that begins with option.
double parseLimit(const std::string& option, const std::string& text);

} // namespace krige

#endif
