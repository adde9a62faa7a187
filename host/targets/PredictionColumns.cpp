#include "host/targets/PredictionColumns.h"

#include <algorithm>

namespace krige
{

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
    if (request.withVariance)
    {
        columns.push_back({"variance", Quantity::Variance, 0});
        addForEachOutput("_stderr", Quantity::StandardError);
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
                       [](const PredictionColumn& column) { return column.quantity != Quantity::Estimate; });
}

} // namespace krige
