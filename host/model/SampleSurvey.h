#ifndef FENN_HOST_MODEL_SAMPLESURVEY_H
#define FENN_HOST_MODEL_SAMPLESURVEY_H

#include <cstddef>
#include <string>
#include <vector>

#include "host/files/ReadSettings.h"
#include "host/model/SampleTable.h"

namespace krige
{

/// What a column of a file holds.
struct ColumnSurvey
{
    std::string name;
    std::vector<double> values;  // per row, NaN where there is no number
    std::size_t numNumbers = 0;  // finite doubles
    std::size_t numMissing = 0;  // a mark, blank, an infinity or a NaN, or beyond the end of a row that is too short
    std::size_t numMarked = 0;   // of the missing ones, by a mark
    std::size_t numOthers = 0;   // texts, numbers beyond the doubles
    double min = 0.0, max = 0.0; // of the numbers; NaN without any

    /// Whether there are more numbers than other texts. Some of those may be words for a missing value.
    bool isNumeric() const
    {
        return numNumbers > numOthers;
    }
};

struct FileSurvey
{
    std::string path;
    char delimiter = '\0';
    std::size_t numRows = 0;
    std::size_t numUnevenRows = 0; // not as long as the header row
    std::size_t firstUnevenLine = 0;
    std::vector<ColumnSurvey> columns;
};

/// Reads a whole file, whatever stands below its header row, and keeps every number. Throws InputError.
FileSurvey surveyFile(const std::string& path, const ReadSettings& reading);

/// A guess at the columns. Numeric columns with the name of a coordinate (x, lon, depth, ...) are inputs and the other
/// numeric ones outputs; row numbers (id, index, ...) and names that occur twice are left out. Where no column or every
/// column has such a name, the last one is the output. Both lists are empty when fewer than two columns are left.
struct ColumnGuess
{
    std::vector<std::string> inputNames;
    std::vector<std::string> outputNames;
};
ColumnGuess guessColumns(const FileSurvey& survey);

/// The rows that hold a number in each of these columns. Throws InputError for a name that the file does not have once.
SampleTable samplesOf(const FileSurvey& survey, const std::vector<std::string>& inputNames,
                      const std::vector<std::string>& outputNames);

} // namespace krige

#endif
