#include "host/reports/VariogramTable.h"

#include "host/model/ModelMemory.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace krige
{

namespace
{

/// What the dump keeps per ordered pair of points: three doubles, and as much again while its list grows.
constexpr double bytesPerPair = 72.0;

void checkMemory(const SurrogateModelDataBlock& block, const std::string& path)
{
    double numPairs = 0.0;
    for (int b = 0; b < block.getNumBlocks(); ++b)
    {
        const double numPts = block.getNumPtsInBlock(b);
        numPairs += numPts * numPts * block.getNumBlocks();
    }
    const double available = findAvailableBytes();
    if (numPairs * bytesPerPair > available)
        throw InputError(path + ": every pair of points takes " + formatBytes(numPairs * bytesPerPair) +
                         " of memory, and this machine has " + formatBytes(available) +
                         " left; add --lags 15 to bin them");
}

} // namespace

std::vector<fenn::LagGroup> lagGroupsOfModel(const fenn::ModelParts& parts, const std::string& path)
{
    const SurrogateModelDataBlock& block = parts.getDataBlock();
    checkMemory(block, path);
    return fenn::groupPairsByLag(block, parts.getSemivariogram(), 0);
}

std::string dumpOfGroups(const fenn::ModelParts& parts, const std::vector<fenn::LagGroup>& groups)
{
    std::string text = fenn::dumpHeader(parts.getDataBlock().getOutputVarSampleVariance(0));
    for (const fenn::LagGroup& group : groups)
        text += fenn::dumpLine(group);
    return text;
}

std::string csvOfBins(const std::vector<fenn::analysis::LagBin>& bins)
{
    std::string text = "lower_lag,upper_lag,mean_lag,semivariance,model,pairs\n";
    for (const fenn::analysis::LagBin& bin : bins)
    {
        for (const double value : {bin.lowerLag, bin.upperLag, bin.meanLag, bin.semivariance, bin.modelValue})
        {
            appendNumber(text, value);
            text += ',';
        }
        text += std::to_string(bin.numPairs) + "\n";
    }
    return text;
}

} // namespace krige
