#ifndef FENN_HOST_MODEL_LAGUNIT_H
#define FENN_HOST_MODEL_LAGUNIT_H

#include <string>

#include "host/model/Distance.h"

namespace fenn
{
class ModelParts;
}

namespace krige
{

/// The unit in which a semivariogram's lags are shown: that of the inputs where they share one scale, or normalised.
struct LagUnit
{
    enum class Choice
    {
        Automatic, // that of the inputs, where there is one
        Normalised,
        InputUnits
    };

    double perNormalised = 1.0; // a normalised lag of 1 in this unit
    std::string name = "normalised";
};

/// units: the name of the inputs' unit, may be empty. Throws UsageError where the inputs' unit is asked for and they do
/// not share a scale.
LagUnit chooseLagUnit(const fenn::ModelParts& parts, LagUnit::Choice choice, const std::string& units);

/// A distance that was given to this option as a normalised lag: it is one, unless it is in input units. Throws
/// UsageError where it is and the inputs do not share a scale.
double toNormalisedLag(const fenn::ModelParts& parts, const std::string& option, const Distance& distance);

} // namespace krige

#endif
