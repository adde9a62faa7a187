// The diagnostic of KrigingMatrix that sets the empirical semivariogram beside the model.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>

#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SemivariogramInterface.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

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

void writeGroups(std::FILE* file, const std::vector<LagRecord>& sortedRecords)
{
    double groupLag = 0.0;
    double sumSquared = 0.0;
    double sumModelled = 0.0;
    int count = 0;
    const auto writeGroup = [&]
    {
        if (count > 0)
            static_cast<void>(
                std::fprintf(file, "%g %g %g %d\n", groupLag, sumSquared * 0.5 / count, sumModelled / count, count));
    };
    for (const auto& [lag, squaredDifference, modelled] : sortedRecords)
    {
        // Measured from the group's first lag, not from the record before: a slowly rising run is split.
        if (std::fabs(groupLag - lag) < lagTolerance)
        {
            sumSquared += squaredDifference;
            sumModelled += modelled;
            ++count;
            continue;
        }
        writeGroup();
        groupLag = lag;
        sumSquared = squaredDifference;
        sumModelled = modelled;
        count = 1;
    }
    writeGroup();
}

} // namespace

bool KrigingMatrix::writeSemivariogramDump(const char* path, int outputVar) const
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "w"), &std::fclose);
    if (!file)
        return false;
    // Write errors are ignored: the file is a diagnostic.
    static_cast<void>(std::fprintf(file.get(), "#dist empiricalSV modeledSV count\n"));
    const double variance = dataBlock->getOutputVarSampleVariance(outputVar);
    static_cast<void>(std::fprintf(file.get(), "#variance = %g\n", variance));

    const std::vector<Normalizer>& normalizers = dataBlock->getInputVarNormalizers();
    std::vector<double> separation(toIndex(numInputVars));
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
                           semivariogram->evaluate(separation) * variance});
    };

    for (int b = 0; b < dataBlock->getNumBlocks(); ++b)
    {
        const std::vector<bool>& isUnblanked = dataBlock->getIncludePtArrayForBlock(b);
        const std::vector<double*>& inputs = dataBlock->getInputValueArraysForBlock(b);
        const double* outputs = dataBlock->getOutputValueArraysForBlock(b)[toIndex(outputVar)];
        const int numPtsInBlock = dataBlock->getNumPtsInBlock(b);
        for (int p = 0; p < numPtsInBlock; ++p)
        {
            if (!isUnblanked[toIndex(p)])
                continue;
            // DELIBERATE: the partner comes from block b, the outer point's own, once for every block k. Readers of the
            // file divide the counts by the number of blocks. Where k is the larger block, b's own count ends the run.
            // Test: SemivariogramDumpTest.PairsAreFormedWithinABlockOncePerBlock
            for (int k = 0; k < dataBlock->getNumBlocks(); ++k)
            {
                for (int q = 0; q < std::min(numPtsInBlock, dataBlock->getNumPtsInBlock(k)); ++q)
                {
                    if (isUnblanked[toIndex(q)])
                        addRecord(inputs, outputs, p, q);
                }
            }
        }
    }
    std::sort(records.begin(), records.end(), isBefore);
    writeGroups(file.get(), records);
    return true;
}
