#include "analysis/Trend.h"

#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

namespace fenn::analysis
{

namespace
{

void removePart(std::vector<double>& values, const std::vector<double>& direction)
{
    const double factor = std::inner_product(values.begin(), values.end(), direction.begin(), 0.0);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] -= factor * direction[i];
}

} // namespace

Trend::Trend(std::vector<std::vector<double>> columns) : directions(std::move(columns))
{
    for (std::size_t k = 0; k < directions.size(); ++k)
    {
        const double length =
            std::sqrt(std::inner_product(directions[k].begin(), directions[k].end(), directions[k].begin(), 0.0));
        logGramDeterminant += 2.0 * std::log(length);
        for (double& entry : directions[k])
            entry = length > 0.0 ? entry / length : 0.0;
        for (std::size_t l = k + 1; l < directions.size(); ++l)
            removePart(directions[l], directions[k]);
    }
}

double Trend::getLogGramDeterminant() const
{
    return logGramDeterminant;
}

std::vector<double> Trend::removeFrom(std::vector<double> values) const
{
    for (int pass = 0; pass < 2; ++pass) // the second one takes what the rounding of the first has left
    {
        for (const std::vector<double>& direction : directions)
            removePart(values, direction);
    }
    return values;
}

} // namespace fenn::analysis
