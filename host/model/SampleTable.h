#ifndef FENN_HOST_MODEL_SAMPLETABLE_H
#define FENN_HOST_MODEL_SAMPLETABLE_H

#include <cstddef>
#include <string>
#include <vector>

#include "host/files/ReadSettings.h"
#include "host/model/ModelOptions.h"

namespace krige
{

/// The samples of one file: raw values, one column per variable, all of one length that fits an int and is not 0.
struct SampleTable
{
    std::string path;
    std::vector<std::string> inputNames;
    std::vector<std::string> outputNames;
    std::vector<std::vector<double>> inputs;  // per input variable
    std::vector<std::vector<double>> outputs; // per output variable
    std::vector<std::size_t> lines{};         // of the file, per sample
    std::size_t numSkipped = 0;               // rows left out for a missing value
    std::string crs{};                        // coordinate reference system of the inputs; empty: unknown
    bool areDegrees = false;                  // two inputs are a longitude and a latitude

    int getNumSamples() const
    {
        return static_cast<int>(inputs.front().size());
    }
};

/// Rows with a missing value are left out when the settings skip them. Throws InputError: see ColumnReader, and when
/// the file holds no samples or more than the library can number.
SampleTable readSamples(const std::string& path, const std::vector<std::string>& inputNames,
                        const std::vector<std::string>& outputNames, const ReadSettings& reading = {});

/// The samples that the command line names.
SampleTable readSamples(const ModelOptions& options);

/// The columns' first entries, as the library takes them. It does not write through them.
std::vector<double*> arraysOf(const std::vector<std::vector<double>>& columns);

} // namespace krige

#endif
