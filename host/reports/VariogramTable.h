#ifndef FENN_HOST_REPORTS_VARIOGRAMTABLE_H
#define FENN_HOST_REPORTS_VARIOGRAMTABLE_H

#include <string>
#include <vector>

#include "analysis/BinnedSemivariogram.h"
#include "surrogatemodel_kriging/SemivariogramDump.h"

namespace fenn
{
class ModelParts;
}

namespace krige
{

/// The pairs of points of the first output, grouped by lag as the plug-in dumps them. path is for messages. Throws
/// InputError when a record of every pair would not fit into memory.
std::vector<fenn::LagGroup> lagGroupsOfModel(const fenn::ModelParts& parts, const std::string& path);

/// The plug-in's dump: two header lines, then a line "distance empirical modelled count" for every group.
std::string dumpOfGroups(const fenn::ModelParts& parts, const std::vector<fenn::LagGroup>& groups);

/// CSV text with a header row and a line for every bin.
std::string csvOfBins(const std::vector<fenn::analysis::LagBin>& bins);

} // namespace krige

#endif
