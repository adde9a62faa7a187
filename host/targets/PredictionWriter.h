#ifndef FENN_HOST_TARGETS_PREDICTIONWRITER_H
#define FENN_HOST_TARGETS_PREDICTIONWRITER_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/files/OutputFile.h"
#include "host/targets/GridSpec.h"
#include "host/targets/TargetSource.h"

namespace krige
{

/// Writes predictions, block by block, in the order of their targets.
class PredictionWriter
{
public:
    virtual ~PredictionWriter() = default;

    /// Before the first block.
    virtual void begin() = 0;

    /// targets: one column per input. values: one column per value name, as long. source: it has just read these
    /// targets.
    virtual void write(const std::vector<std::vector<double>>& targets, const std::vector<std::vector<double>>& values,
                       const TargetSource& source) = 0;

    /// After the last block: makes the file appear.
    virtual void finish() = 0;
};

/// One CSV line per target: inputs, values, then the kept columns of the source.
class CsvPredictions : public PredictionWriter
{
public:
    /// columnNames: of all columns; empty: no header row.
    CsvPredictions(const std::string& path, std::vector<std::string> columnNames_);
    void begin() override;
    void write(const std::vector<std::vector<double>>& targets, const std::vector<std::vector<double>>& values,
               const TargetSource& source) override;
    void finish() override;

private:
    OutputFile output;
    std::vector<std::string> columnNames;
    std::string text; // kept: it grows to a block's size once
};

/// A legacy VTK file of structured points: the first axis is x and runs fastest; where there are fewer than three axes,
/// the others have one point. Values are binary doubles, so that they keep their bits; one scalar array per value name.
///
/// The file holds one array after the other, so that each block is written in several places: the output must be a
/// plain file.
class VtkPredictions : public PredictionWriter
{
public:
    /// Throws UsageError for more than three axes.
    VtkPredictions(const std::string& path, const GridSpec& grid_, std::vector<std::string> valueNames_);
    void begin() override;
    void write(const std::vector<std::vector<double>>& targets, const std::vector<std::vector<double>>& values,
               const TargetSource& source) override;
    void finish() override;

private:
    OutputFile output;
    GridSpec grid;
    std::vector<std::string> valueNames;
    std::vector<std::uint64_t> nextOffsets; // per array, of its next block
    std::string bytes;
};

} // namespace krige

#endif
