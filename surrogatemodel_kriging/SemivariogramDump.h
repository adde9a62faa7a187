#ifndef FENN_SURROGATEMODEL_KRIGING_SEMIVARIOGRAMDUMP_H
#define FENN_SURROGATEMODEL_KRIGING_SEMIVARIOGRAMDUMP_H

#include <string>
#include <vector>

class SemivariogramInterface;
class SurrogateModelDataBlock;

namespace fenn
{

/// The ordered pairs of points at one lag.
struct LagGroup
{
    double lag;       // the smallest, normalised
    double empirical; // half the mean squared output difference
    double modelled;  // mean of the model's values times the output's sample variance
    int numPairs;
};

/// What KrigingMatrix::writeSemivariogramDump writes: the empirical semivariogram of one output beside the model, in
/// groups of rising lag. For small data sets: keeps a record of 24 bytes for each pair while it works.
std::vector<LagGroup> groupPairsByLag(const SurrogateModelDataBlock& dataBlock,
                                      const SemivariogramInterface& semivariogram, int outputVar);

/// The text of the dump: two header lines, then one line for each group.
std::string dumpHeader(double sampleVariance);
std::string dumpLine(const LagGroup& group);

} // namespace fenn

#endif
