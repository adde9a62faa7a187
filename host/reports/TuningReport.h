#ifndef FENN_HOST_REPORTS_TUNINGREPORT_H
#define FENN_HOST_REPORTS_TUNINGREPORT_H

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

#include "analysis/Tuning.h"

namespace krige
{

/// "--drift 1 --range 0.35 --nugget 0.1 --nearest 16 --scale 1,2": settings as a command line has them.
std::string optionsFor(const fenn::estimation::ModelSettings& settings);

/// Prints what a search tries, a line per trial below a header line, with a star behind the best so far.
class TrialTable
{
public:
    explicit TrialTable(std::ostream& stream_) : stream(stream_) {}

    void add(const fenn::analysis::Trial& trial);

private:
    std::ostream& stream;
    std::size_t numTrials = 0;
    double startScore = 0.0;
    double bestScore = 0.0; // penalised
};

/// The trials as CSV text, the winner marked.
std::string csvOfTrials(const fenn::analysis::TuningResult& result);

/// Scores of start and winner, their errors at the held-out samples per output, and the winner's options.
void printTuning(std::ostream& out, const fenn::analysis::TuningResult& result,
                 const std::vector<std::string>& outputNames, fenn::analysis::Objective objective);

} // namespace krige

#endif
