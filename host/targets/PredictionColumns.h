#ifndef FENN_HOST_TARGETS_PREDICTIONCOLUMNS_H
#define FENN_HOST_TARGETS_PREDICTIONCOLUMNS_H

#include <cstddef>
#include <string>
#include <vector>

namespace krige
{

/// What a column of predictions holds, one value per target.
enum class Quantity
{
    Estimate,
    Median,   // of an output that is modelled by its logarithm
    Variance, // for a sill of 1, the same for every output
    StandardError,
    LowerEnd, // of the interval that holds a new observation
    UpperEnd
};

struct PredictionColumn
{
    std::string name;
    Quantity quantity = Quantity::Estimate;
    std::size_t output = 0; // of Variance: 0
};

/// What a person asks for beside the estimates.
struct PredictionRequest
{
    bool withVariance = false; // and standard errors
    double coverage = 0.0;     // of intervals, in percent; 0: none
    bool withMedian = false;   // of outputs that are modelled by their logarithms
};

/// A percentage of an interval, from 1 to below 100. Throws UsageError that begins with option.
double parseCoverage(const std::string& option, const std::string& text);

/// The columns behind the inputs, in their order: the estimates of all outputs, then what was asked for.
std::vector<PredictionColumn> choosePredictionColumns(const std::vector<std::string>& outputNames,
                                                      const PredictionRequest& request);

std::vector<std::string> namesOf(const std::vector<PredictionColumn>& columns);

/// Whether some column is made from Kriging variances.
bool needVariances(const std::vector<PredictionColumn>& columns);

} // namespace krige

#endif
