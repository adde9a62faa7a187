#ifndef FENN_HOST_REPORTS_RANGETEXT_H
#define FENN_HOST_REPORTS_RANGETEXT_H

#include <string>

#include "host/model/SampleTable.h"
#include "host/model/Settings.h"

namespace krige
{

/// " m", or nothing for units that were not said: what stands behind a distance.
std::string behindDistance(const std::string& units);

/// The range of the model of these samples and settings along each input, as a person measures it: "900 m in 'x', 640 m
/// in 'y' (0.5 of the normalised diagonal)". Throws as makeModelParts.
std::string describeRange(const SampleTable& samples, const Settings& settings, const std::string& units);

} // namespace krige

#endif
