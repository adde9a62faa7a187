#include "host/targets/PredictionColumns.h"

#include <algorithm>

#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

double parseCoverage(const std::string& option, const std::string& text)
{
    double percentage = 0.0;
    if (parseNumber(text, percentage) != NumberStatus::Ok || !(percentage > 0.0 && percentage < 100.0))
        throw UsageError(option + ": must be a percentage from 1 to below 100, such as 95, not " +
                         quoteForMessage(text));
    if (percentage < 1.0) // a fraction of 1, more likely than an interval that all but never holds
        throw UsageError(option + ": is in percent; " + quoteForMessage(text) + " would be " +
                         formatNumber(100.0 * percentage));
    return percentage;
}

std::vector<PredictionColumn> choosePredictionColumns(const std::vector<std::string>& outputNames,
                                                      const PredictionRequest& request)
{
    std::vector<PredictionColumn> columns;
    const auto addForEachOutput = [&](const char* ending, Quantity quantity)
    {
        for (std::size_t output = 0; output < outputNames.size(); ++output)
            columns.push_back({outputNames[output] + ending, quantity, output});
    };
    addForEachOutput("", Quantity::Estimate);
    if (request.withMedian)
        addForEachOutput("_median", Quantity::Median);
    if (request.withVariance)
    {
        columns.push_back({"variance", Quantity::Variance, 0});
        addForEachOutput("_stderr", Quantity::StandardError);
    }
    for (std::size_t output = 0; request.coverage > 0.0 && output < outputNames.size(); ++output)
    {
        columns.push_back({outputNames[output] + "_lo", Quantity::LowerEnd, output});
        columns.push_back({outputNames[output] + "_hi", Quantity::UpperEnd, output});
    }
    return columns;
}

std::vector<std::string> namesOf(const std::vector<PredictionColumn>& columns)
{
    std::vector<std::string> names;
    for (const PredictionColumn& column : columns)
        names.push_back(column.name);
    return names;
}

bool needVariances(const std::vector<PredictionColumn>& columns)
{
    return std::any_of(columns.begin(), columns.end(),
                       [](const PredictionColumn& column)
                       { return column.quantity != Quantity::Estimate && column.quantity != Quantity::Median; });
}

} // namespace krige
