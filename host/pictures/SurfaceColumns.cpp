#include "host/pictures/SurfaceColumns.h"

#include "host/text/NumberText.h"

namespace krige
{

std::vector<PredictionColumn> chooseSurfaceColumns(const std::vector<std::string>& outputNames,
                                                   const SurfaceOptions& options, bool isLine)
{
    std::vector<PredictionColumn> columns;
    for (std::size_t output = 0; output < outputNames.size(); ++output)
    {
        columns.push_back({outputNames[output], options.quantity, output});
        if (options.quantity == Quantity::Variance)
            return columns; // it is the same for every output
        if (isLine && options.quantity == Quantity::Estimate)
        {
            columns.push_back({outputNames[output], Quantity::LowerEnd, output});
            columns.push_back({outputNames[output], Quantity::UpperEnd, output});
        }
        if (options.withStandardErrors)
            columns.push_back({outputNames[output], Quantity::StandardError, output});
    }
    return columns;
}

QuantityName nameColumn(const PredictionColumn& column, const QuantityName& output, double coverage, bool areLogarithms)
{
    const std::string interval = formatNumber(coverage) + " % interval of ";
    switch (column.quantity)
    {
    case Quantity::Estimate:
        return output;
    case Quantity::Median:
        return {"median of " + output.name, output.unit};
    case Quantity::Variance:
        return {"variance for a sill of 1", {}};
    case Quantity::StandardError:
        if (areLogarithms)
            return {"standard error of ln " + output.name, {}};
        return {"standard error of " + output.name, output.unit};
    case Quantity::LowerEnd:
        return {"lower end of the " + interval + output.name, output.unit};
    case Quantity::UpperEnd:
        return {"upper end of the " + interval + output.name, output.unit};
    }
    return output;
}

} // namespace krige
