#ifndef FENN_HOST_REPORTS_VALIDATIONRESULT_H
#define FENN_HOST_REPORTS_VALIDATIONRESULT_H

#include <iosfwd>
#include <string>
#include <vector>

#include "analysis/Calibration.h"
#include "analysis/ErrorStatistics.h"
#include "analysis/OutputTransform.h"

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
    std::vector<double> variances;              // for a sill of 1, as the engine gave them
    std::vector<std::vector<double>> sills;     // per output: of the model that estimated each point

    /// Standard errors of an output's estimates, as predictions of new observations; NaN where there is none.
    std::vector<double> calcStandardErrors(std::size_t output) const;

    // As the model has them, where these are not truths and estimates: logarithms, or not clamped. Standard errors are
    // theirs.
    std::vector<std::vector<double>> modelTruths{};
    std::vector<std::vector<double>> modelEstimates{};

    const std::vector<double>& getModelTruths(std::size_t output) const
    {
        return modelTruths.empty() ? truths[output] : modelTruths[output];
    }

    const std::vector<double>& getModelEstimates(std::size_t output) const
    {
        return modelEstimates.empty() ? estimates[output] : modelEstimates[output];
    }

    /// Brings truths and estimates, which are the model's so far, into the data's units. driftProducts: one per point.
    void bringIntoUnits(const fenn::analysis::OutputUnits& units, const std::vector<double>& driftProducts);
};

/// How good the estimates of one output are, and how good their standard errors.
struct ValidationFigures
{
    fenn::analysis::ErrorStatistics errors;
    fenn::analysis::Calibration calibration;
    std::vector<double> standardErrors; // of each point
};

/// Per output; numWorst worst points each.
std::vector<ValidationFigures> summarise(const ValidationResult& result, std::size_t numWorst);

/// The table of errors, a line per output.
void printErrors(std::ostream& out, const ValidationResult& result, const std::vector<ValidationFigures>& figures);

/// The worst points of each output, with line, coordinates, values and errors.
void printWorstPoints(std::ostream& out, const ValidationResult& result, const std::vector<ValidationFigures>& figures);

/// CSV text: the inputs, per output its measured value, estimate, error and standard error, then the variance.
std::string csvOfPoints(const ValidationResult& result, const std::vector<ValidationFigures>& figures);

} // namespace krige

#endif
