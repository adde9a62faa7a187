// The diagnostic of KrigingMatrix that sets the empirical semivariogram beside the model.

#include "surrogatemodel_kriging/SemivariogramDump.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SemivariogramInterface.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn
{

namespace
{

/// Lags closer than this to a group's first one share its line: ten times the spacing of single-precision numbers at 1.
constexpr double lagTolerance = 1.1920928955078125e-06;

/// One ordered pair of points: lag, squared output difference, modelled value times the sample variance.
using LagRecord = std::array<double, 3>;

std::size_t toIndex(int i)
{
    return static_cast<std::size_t>(i);
}

/// Ascending by lag, then squared difference, then modelled value. NaN sorts last: the sort needs a total order.
bool isBefore(const LagRecord& a, const LagRecord& b)
{
    for (std::size_t k = 0; k < a.size(); ++k)
    {
        if (a[k] < b[k] || (std::isnan(b[k]) && !std::isnan(a[k])))
            return true;
        if (b[k] < a[k] || (std::isnan(a[k]) && !std::isnan(b[k])))
            return false;
    }
    return false;
}

std::vector<LagGroup> groupRecords(const std::vector<LagRecord>& sortedRecords)
{
    std::vector<LagGroup> groups;
    double firstLag = 0.0;
    double sumSquared = 0.0;
    double sumModelled = 0.0;
    int count = 0;
    const auto endGroup = [&]
    {
        if (count > 0)
            groups.push_back({firstLag, sumSquared * 0.5 / count, sumModelled / count, count});
    };
    for (const auto& [lag, squaredDifference, modelled] : sortedRecords)
    {
        // Measured from the group's first lag, not from the record before: a slowly rising run is split.
        if (std::fabs(firstLag - lag) < lagTolerance)
        {
            sumSquared += squaredDifference;
            sumModelled += modelled;
            ++count;
            continue;
        }
        endGroup();
        firstLag = lag;
        sumSquared = squaredDifference;
        sumModelled = modelled;
        count = 1;
    }
    endGroup();
    return groups;
}

} // namespace

std::vector<LagGroup> groupPairsByLag(const SurrogateModelDataBlock& dataBlock,
                                      const SemivariogramInterface& semivariogram, int outputVar)
{
    const double variance = dataBlock.getOutputVarSampleVariance(outputVar);
    const std::vector<Normalizer>& normalizers = dataBlock.getInputVarNormalizers();
    std::vector<double> separation(toIndex(dataBlock.getNumInputVars()));
    std::vector<LagRecord> records;
    const auto addRecord = [&](const std::vector<double*>& inputs, const double* outputs, int p, int q)
    {
        double lagSquared = 0.0;
        for (std::size_t v = 0; v < separation.size(); ++v)
        {
            separation[v] = inputs[v][p] - inputs[v][q];
            const double difference = separation[v] * normalizers[v].getScale();
            lagSquared += difference * difference;
        }
        const double outputDifference = outputs[p] - outputs[q];
        records.push_back({std::sqrt(lagSquared), outputDifference * outputDifference,
                           semivariogram.evaluate(separation) * variance});
    };

    for (int b = 0; b < dataBlock.getNumBlocks(); ++b)
    {
        const int numPtsInBlock = dataBlock.getNumPtsInBlock(b);
        if (numPtsInBlock < 1)
            continue; // such a block need not have arrays
        const std::vector<bool>& isUnblanked = dataBlock.getIncludePtArrayForBlock(b);
        const std::vector<double*>& inputs = dataBlock.getInputValueArraysForBlock(b);
        const double* outputs = dataBlock.getOutputValueArraysForBlock(b)[toIndex(outputVar)];
        for (int p = 0; p < numPtsInBlock; ++p)
        {
            if (!isUnblanked[toIndex(p)])
                continue;
            // DELIBERATE: the partner comes from block b, the outer point's own, once for every block k. Readers of the
            // file divide the counts by the number of blocks. Where k is the larger block, b's own count ends the run.
            // Tests: SemivariogramDumpTest.PairsAreFormedWithinABlockOncePerBlock,
            // TheInnerIndexEndsWithTheSmallerOfTheTwoBlocks
            for (int k = 0; k < dataBlock.getNumBlocks(); ++k)
            {
                for (int q = 0; q < std::min(numPtsInBlock, dataBlock.getNumPtsInBlock(k)); ++q)
                {
                    if (isUnblanked[toIndex(q)])
                        addRecord(inputs, outputs, p, q);
                }
            }
        }
    }
    std::sort(records.begin(), records.end(), isBefore);
    return groupRecords(records);
}

std::string dumpHeader(double sampleVariance)
{
    std::array<char, 64> text;
    static_cast<void>(
        std::snprintf(text.data(), text.size(), "#dist empiricalSV modeledSV count\n#variance = %g\n", sampleVariance));
    return text.data();
}

std::string dumpLine(const LagGroup& group)
{
    std::array<char, 64> text; // three numbers of at most 13 characters and one of 11
    static_cast<void>(std::snprintf(text.data(), text.size(), "%g %g %g %d\n", group.lag, group.empirical,
                                    group.modelled, group.numPairs));
    return text.data();
}

} // namespace fenn

bool KrigingMatrix::writeSemivariogramDump(const char* path, int outputVar) const
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "w"), &std::fclose);
    if (!file)
        return false;
    // Write errors are ignored: the file is a diagnostic.
    const auto write = [&](const std::string& text)
    {
        static_cast<void>(std::fputs(text.c_str(), file.get()));
    };
    write(fenn::dumpHeader(dataBlock->getOutputVarSampleVariance(outputVar)));
    for (const fenn::LagGroup& group : fenn::groupPairsByLag(*dataBlock, *semivariogram, outputVar))
        write(fenn::dumpLine(group));
    return true;
}
