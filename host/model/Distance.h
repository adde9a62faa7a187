#ifndef FENN_HOST_MODEL_DISTANCE_H
#define FENN_HOST_MODEL_DISTANCE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace krige
{

/// A distance as people write it: "0.3", which an option gives its own meaning, or "900u", in the units of the inputs.
struct Distance
{
    double value = 0.0;
    bool isInInputUnits = false;
};

/// Throws UsageError that begins with name, the option or key that was typed, for anything but a finite number of at
/// least 0 with or without the unit.
Distance parseDistance(const std::string& name, std::string_view text);

/// The text that parseDistance gives this distance for, to the bit.
std::string formatDistance(const Distance& distance);

/// The end of the message of an error: what to change so that a distance in input units has a meaning.
std::string suggestOneScale(std::size_t numInputs);

} // namespace krige

#endif
