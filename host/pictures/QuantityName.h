#ifndef FENN_HOST_PICTURES_QUANTITYNAME_H
#define FENN_HOST_PICTURES_QUANTITYNAME_H

#include <string>

namespace krige
{

/// What a column measures, and in which unit.
struct QuantityName
{
    std::string name;
    std::string unit; // may be empty

    /// "zinc (ppm)".
    std::string text() const;
};

/// A unit in brackets at the end of a column's name is taken from it: "zinc [ppm]", "depth (m)". unit: what a person
/// says it is, which wins; may be empty.
QuantityName nameQuantity(const std::string& columnName, const std::string& unit);

/// The unit of a variance: "ppm²", "(mg/kg)²"; empty for none.
std::string squareOf(const std::string& unit);

} // namespace krige

#endif
