#include "host/model/Distance.h"

#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

Distance parseDistance(const std::string& name, std::string_view text)
{
    const std::string_view whole = text;
    text = trimBlanks(text);
    Distance distance;
    distance.isInInputUnits = text.size() > 1 && text.back() == 'u';
    if (distance.isInInputUnits)
        text.remove_suffix(1);
    const NumberStatus status = parseNumber(text, distance.value);
    if (status == NumberStatus::Missing)
        throw UsageError(name + ": needs a finite number, not " + quoteForMessage(whole));
    if (status != NumberStatus::Ok)
        throw UsageError(name + ": " + describeNumberFault(whole, status));
    if (distance.value < 0.0)
        throw UsageError(name + ": must be at least 0, not " + quoteForMessage(whole));
    return distance;
}

std::string formatDistance(const Distance& distance)
{
    return formatNumber(distance.value) + (distance.isInInputUnits ? "u" : "");
}

std::string suggestOneScale(std::size_t numInputs)
{
    std::string factors = "1";
    for (std::size_t v = 1; v < numInputs; ++v)
        factors += ",1";
    return "a distance in the inputs' units needs inputs of one scale; add --scale " + factors +
           " (by default each input is stretched to the same width)";
}

} // namespace krige
