#ifndef FENN_HOST_REPORTS_VALIDATIONRESULT_H
#define FENN_HOST_REPORTS_VALIDATIONRESULT_H

#include <iosfwd>
#include <string>
#include <vector>

#include "analysis/ErrorStatistics.h"

namespace krige
{

/// Known values beside their estimates: one entry per point in every list.
struct ValidationResult
{
    std::vector<std::string> inputNames;
    std::vector<std::string> outputNames;
    std::vector<std::string> lines; // of the file: "7", or "3+7" for merged samples
    std::vector<std::vector<double>> inputs;
    std::vector<std::vector<double>> truths;    // per output
    std::vector<std::vector<double>> estimates; // likewise; NaN where there is none
    std::vector<double> variances;              // for a sill of 1
    std::vector<double> outputVariances;        // per output: sample variance

    /// Standard error of an output's estimate at a point; NaN for a negative variance.
    double getStandardError(std::size_t output, std::size_t point) const;
};

/// Per output; numWorst worst points each.
std::vector<fenn::analysis::ErrorStatistics> summarise(const ValidationResult& result, std::size_t numWorst);

/// The table of errors, a line per output.
void printErrors(std::ostream& out, const ValidationResult& result,
                 const std::vector<fenn::analysis::ErrorStatistics>& statistics);

/// The worst points of each output, with line, coordinates, values and errors.
void printWorstPoints(std::ostream& out, const ValidationResult& result,
                      const std::vector<fenn::analysis::ErrorStatistics>& statistics);

/// CSV text: the inputs, per output its measured value, estimate, error and standard error, then the variance.
std::string csvOfPoints(const ValidationResult& result);

} // namespace krige

#endif
