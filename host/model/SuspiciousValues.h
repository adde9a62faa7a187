#ifndef FENN_HOST_MODEL_SUSPICIOUSVALUES_H
#define FENN_HOST_MODEL_SUSPICIOUSVALUES_H

#include <cstddef>
#include <string>
#include <vector>

#include "host/model/SampleTable.h"

namespace krige
{

/// A value that may stand for "no value" in a column of numbers, such as -9999 or 1e20.
struct SuspiciousValue
{
    double value = 0.0;
    std::size_t count = 0;
    double least = 0.0; // of the other values
    double greatest = 0.0;
};

/// The values of a column that repeat and lie far beyond all others: the least or the greatest value, when it occurs at
/// least twice and its distance to the next value is more than three times the range of the other values, or, for a
/// number of nines such as -99 or 9999.9, more than once that range. What was found is left out, and the rest is looked
/// at again. Others of a single value have no range: nothing is found then. NaN counts for nothing.
std::vector<SuspiciousValue> findSuspiciousValues(const std::vector<double>& values);

/// A warning per suspicious value of a column, with the option that leaves such samples out.
std::vector<std::string> warningsOfColumn(const std::string& name, const std::vector<double>& values);
std::vector<std::string> warningsOfSamples(const SampleTable& samples);

} // namespace krige

#endif
