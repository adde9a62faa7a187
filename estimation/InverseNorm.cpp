#include "estimation/InverseNorm.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>

namespace fenn::estimation
{

using kernels::stripWidth;

InverseNorm::InverseNorm(std::vector<double> scales_, std::size_t numColumns_)
    : scales(std::move(scales_)), numColumns(numColumns_), signs(scales.size() * numColumns)
{
    for (const double scale : scales)
        numRows += scale == 0.0 ? 0 : 1;
}

void InverseNorm::writeColumns(const StripStore& store, std::size_t first) const
{
    for (std::size_t c = 0; c < numColumns; ++c)
    {
        double* column = store.getColumn(first + c);
        for (std::size_t i = 0; i < scales.size(); ++i)
        {
            double value = 0.0;
            if (numDone == 0)
                value = startValue(c, i);
            else if (numDone == 1)
                value = signs[c * scales.size() + i];
            else
                value = c < unitVectors.size() && unitVectors[c] == i ? 1.0 : 0.0;
            column[stripWidth * i] = scales[i] * value;
        }
    }
}

double InverseNorm::startValue(std::size_t column, std::size_t i) const
{
    const auto count = static_cast<double>(numRows);
    if (column == 0)
    {
        // Magnitudes that grow: neighbours do not cancel exactly.
        const double magnitude = (1.0 + static_cast<double>(i) / static_cast<double>(scales.size())) / (2.0 * count);
        return i % 2 == 0 ? magnitude : -magnitude;
    }
    // Any well mixed bit will do.
    std::uint64_t bits = (i + 1) * 0x9e3779b97f4a7c15U + column * 0xbf58476d1ce4e5b9U;
    bits = (bits ^ (bits >> 31)) * 0x94d049bb133111ebU;
    return (bits >> 63) == 0 ? 1.0 / count : -1.0 / count;
}

void InverseNorm::readSolutions(const StripStore& store, std::size_t first)
{
    if (numDone != 1)
        raiseEstimate(store, first);
    if (numDone == 0)
        keepSigns(store, first);
    else if (numDone == 1)
        chooseUnitVectors(store, first);
    ++numDone;
}

void InverseNorm::raiseEstimate(const StripStore& store, std::size_t first)
{
    for (std::size_t c = 0; c < numColumns; ++c)
    {
        const double* column = store.getColumn(first + c);
        double norm = 0.0;
        for (std::size_t i = 0; i < scales.size(); ++i)
            norm += std::fabs(scales[i] * column[stripWidth * i]);
        if (!(norm <= estimate)) // a NaN counts, and stays
            estimate = std::isnan(estimate) ? estimate : norm;
    }
}

void InverseNorm::keepSigns(const StripStore& store, std::size_t first)
{
    for (std::size_t c = 0; c < numColumns; ++c)
    {
        const double* column = store.getColumn(first + c);
        for (std::size_t i = 0; i < scales.size(); ++i)
            signs[c * scales.size() + i] = column[stripWidth * i] < 0.0 ? -1 : 1;
    }
}

void InverseNorm::chooseUnitVectors(const StripStore& store, std::size_t first)
{
    std::vector<double> promises(scales.size());
    std::vector<std::size_t> rows;
    for (std::size_t i = 0; i < scales.size(); ++i)
    {
        if (scales[i] != 0.0)
            rows.push_back(i);
        for (std::size_t c = 0; c < numColumns; ++c)
            promises[i] = std::max(promises[i], std::fabs(scales[i] * store.getColumn(first + c)[stripWidth * i]));
    }
    const std::size_t count = std::min(numColumns, rows.size());
    std::partial_sort(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(count), rows.end(),
                      [&](std::size_t a, std::size_t b)
                      { return promises[a] != promises[b] ? promises[a] > promises[b] : a < b; });
    rows.resize(count);
    unitVectors = std::move(rows);
}

double InverseNorm::getEstimate() const
{
    return estimate;
}

} // namespace fenn::estimation
