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

/// Where predictions go, block by block, in the order of their targets.
class PredictionWriter
{
public:
    virtual ~PredictionWriter() = default;

    /// Before the first block.
    virtual void begin() = 0;

    /// targets: one column per input. values: one column per value name, as long. source: the block is its last one.
    virtual void write(const std::vector<std::vector<double>>& targets, const std::vector<std::vector<double>>& values,
                       const TargetSource& source) = 0;
};

/// Lines of CSV: inputs, values, then what the source adds as text.
class CsvPredictions : public PredictionWriter
{
public:
    /// columnNames: of all columns; empty: no header row.
    CsvPredictions(OutputFile& output_, std::vector<std::string> columnNames_);
    void begin() override;
    void write(const std::vector<std::vector<double>>& targets, const std::vector<std::vector<double>>& values,
               const TargetSource& source) override;

private:
    OutputFile& output;
    std::vector<std::string> columnNames;
    std::string text; // kept: it grows to a block's size once
};

/// A legacy VTK file of structured points: the first axis is x and runs fastest, a missing axis has one point. Values
/// are binary doubles, so that they keep their bits; one scalar array per value name.
///
/// Every array lies behind the one before it, so blocks are written out of order: the output must have places.
class VtkPredictions : public PredictionWriter
{
public:
    /// Throws UsageError for more than three axes.
    VtkPredictions(OutputFile& output_, const GridSpec& grid_, std::vector<std::string> valueNames_);
    void begin() override;
    void write(const std::vector<std::vector<double>>& targets, const std::vector<std::vector<double>>& values,
               const TargetSource& source) override;

private:
    OutputFile& output;
    GridSpec grid;
    std::vector<std::string> valueNames;
    std::vector<std::uint64_t> nextOffsets; // per array, of its next block
    std::string bytes;
};

} // namespace krige

#endif
