#ifndef FENN_HOST_REPORTS_TUNINGREPORT_H
#define FENN_HOST_REPORTS_TUNINGREPORT_H

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "analysis/Tuning.h"
#include "host/model/Settings.h"

namespace krige
{

/// "--drift 1 --range 0.35 --nugget 0.1 --nearest 16 --scale 1,2": settings as a command line has them.
std::string optionsFor(const Settings& settings);

/// "by likelihood over drift 0, 1 and 2, range 0.071 to 4, nugget 0 to 0.99 and scales, of all points": what is
/// compared, and among what.
std::string describeSearch(const fenn::analysis::SearchSpace& space, const fenn::analysis::TuningOptions& options,
                           std::size_t numSamples);

/// Prints what a search tries, a line per trial below a header line, with a star behind the best so far of its kind.
class TrialTable
{
public:
    explicit TrialTable(std::ostream& stream_) : stream(stream_) {}

    void add(const fenn::analysis::Trial& trial);

private:
    std::ostream& stream;
    std::size_t numTrials = 0;
};

/// The trials as CSV text, the winner marked. A deviance or a score that was not computed is left empty. With a column
/// of ratios and angles where they were searched.
std::string csvOfTrials(const fenn::analysis::TuningResult& result, bool hasAnisotropy);

/// Scores of start and winner, their errors per output, and the winner's options. Of a search that was cancelled the
/// winner alone.
void printTuning(std::ostream& out, const fenn::analysis::TuningResult& result, const Settings& winner,
                 const std::vector<std::string>& outputNames, fenn::analysis::Objective objective);

} // namespace krige

#endif
