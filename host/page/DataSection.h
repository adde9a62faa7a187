#ifndef FENN_HOST_PAGE_DATASECTION_H
#define FENN_HOST_PAGE_DATASECTION_H

#include <string>
#include <vector>

#include "host/model/SampleTable.h"

namespace krige
{

/// The samples: what their columns hold, where they lie, how their values are distributed, and what was said against
/// them. units: of the inputs, may be empty.
std::string dataSection(const SampleTable& samples, const std::string& units, const std::vector<std::string>& warnings);

/// "x (m)", or "x" without units: what stands beside an axis.
std::string nameWithUnits(const std::string& name, const std::string& units);

} // namespace krige

#endif
