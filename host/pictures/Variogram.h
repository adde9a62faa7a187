#ifndef FENN_HOST_PICTURES_VARIOGRAM_H
#define FENN_HOST_PICTURES_VARIOGRAM_H

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

/// Semivariogram values of the model of the first output, at rising lags.
struct VariogramCurve
{
    std::vector<double> lags;
    std::vector<double> values; // times the output's sample variance
};

/// The library's own dump for the first output. path is for messages. Throws InputError where the records of all pairs
/// would not fit into memory.
std::vector<fenn::LagGroup> lagGroupsOfModel(const fenn::ModelParts& parts, const std::string& path);

/// "distance empirical modelled count" a line, after two header lines.
std::string dumpOfGroups(const fenn::ModelParts& parts, const std::vector<fenn::LagGroup>& groups);

/// CSV text with a header row.
std::string csvOfBins(const std::vector<fenn::analysis::LagBin>& bins);

/// From just above lag 0 to maxLag.
VariogramCurve curveOfModel(const fenn::ModelParts& parts, double maxLag);

/// groups: may be empty; drawn as small dots behind the bins. Throws as Picture::save.
void drawVariogram(const std::string& path, const std::string& outputName, const std::vector<fenn::LagGroup>& groups,
                   const std::vector<fenn::analysis::LagBin>& bins, const VariogramCurve& curve);

} // namespace krige

#endif
