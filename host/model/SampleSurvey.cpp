#include "host/model/SampleSurvey.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <unordered_map>

#include "host/files/CsvReader.h"
#include "host/files/HeaderRow.h"
#include "host/files/settingsOf.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "host/text/Spelling.h"

namespace krige
{

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

void addCell(ColumnSurvey& column, std::string_view text, const ReadSettings& reading)
{
    double value = nan;
    const NumberStatus status = parseNumber(text, value, reading.hasDecimalComma);
    const bool isMarked = reading.missing.contains(text, status, value);
    column.values.push_back(isMarked ? nan : value);
    if (isMarked)
    {
        ++column.numMissing;
        ++column.numMarked;
    }
    else if (status == NumberStatus::Ok)
    {
        column.min = column.numNumbers == 0 ? value : std::min(column.min, value);
        column.max = column.numNumbers == 0 ? value : std::max(column.max, value);
        ++column.numNumbers;
    }
    else if (status == NumberStatus::Missing)
        ++column.numMissing;
    else
        ++column.numOthers;
}

std::string inLowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool isOneOf(const std::string& name, std::initializer_list<const char*> names)
{
    const std::string lower = inLowerCase(name);
    return std::any_of(names.begin(), names.end(), [&](const char* candidate) { return lower == candidate; });
}

bool namesACoordinate(const std::string& name)
{
    return isOneOf(name, {"x", "y", "z", "lon", "long", "longitude", "lat", "latitude", "easting", "northing", "east",
                          "north", "depth", "time", "t"});
}

bool namesARow(const std::string& name)
{
    return name.empty() || isOneOf(name, {"id", "fid", "ogc_fid", "index", "row"});
}

const ColumnSurvey& findColumn(const FileSurvey& survey, const std::string& name)
{
    const ColumnSurvey* found = nullptr;
    for (const ColumnSurvey& column : survey.columns)
    {
        if (column.name != name)
            continue;
        if (found)
            throw InputError(survey.path + ": the header row has the column " + quoteForMessage(name) +
                             " twice; rename one of them");
        found = &column;
    }
    if (!found)
    {
        std::vector<std::string> names;
        for (const ColumnSurvey& column : survey.columns)
            names.push_back(column.name);
        throw InputError(survey.path + ": there is no column " + quoteForMessage(name) + suggestMeant(name, names));
    }
    return *found;
}

} // namespace

FileSurvey surveyFile(const std::string& path, const ReadSettings& settings)
{
    const ReadSettings reading = settingsOf(path, settings);
    CsvReader reader(path, reading);
    FileSurvey survey;
    survey.path = reader.getPath();
    CsvRecord record;
    const HeaderRow header(reader, record, reading);
    if (header.isOfNumbers())
        header.throwOfNumbers();
    survey.delimiter = reader.getDelimiter();
    for (const std::string& name : header.getNames())
    {
        survey.columns.emplace_back();
        survey.columns.back().name = name;
    }

    bool isRowAtHand = !reading.hasHeader;
    while (isRowAtHand || reader.read(record))
    {
        isRowAtHand = false;
        ++survey.numRows;
        if (record.getNumFields() != survey.columns.size() && ++survey.numUnevenRows == 1)
            survey.firstUnevenLine = record.getLine();
        for (std::size_t i = 0; i < survey.columns.size(); ++i)
            addCell(survey.columns[i], i < record.getNumFields() ? record[i] : std::string_view(), reading);
    }
    for (ColumnSurvey& column : survey.columns)
    {
        if (column.numNumbers == 0)
            column.min = column.max = nan;
    }
    return survey;
}

ColumnGuess guessColumns(const FileSurvey& survey)
{
    std::unordered_map<std::string, int> numOfName;
    for (const ColumnSurvey& column : survey.columns)
        ++numOfName[column.name];
    std::vector<std::string> numeric;
    for (const ColumnSurvey& column : survey.columns)
    {
        if (column.isNumeric() && numOfName[column.name] == 1 && !namesARow(column.name))
            numeric.push_back(column.name);
    }
    ColumnGuess guess;
    if (numeric.size() < 2)
        return guess;
    const auto firstOutput = std::stable_partition(numeric.begin(), numeric.end(), namesACoordinate);
    const bool told = firstOutput != numeric.begin() && firstOutput != numeric.end();
    const auto split = told ? firstOutput : numeric.end() - 1;
    guess.inputNames.assign(numeric.begin(), split);
    guess.outputNames.assign(split, numeric.end());
    return guess;
}

SampleTable samplesOf(const FileSurvey& survey, const std::vector<std::string>& inputNames,
                      const std::vector<std::string>& outputNames)
{
    SampleTable samples{survey.path, inputNames, outputNames, {}, {}, {}, 0};
    samples.inputs.resize(inputNames.size());
    samples.outputs.resize(outputNames.size());
    std::vector<const std::vector<double>*> sources;
    std::vector<std::vector<double>*> columns;
    for (std::size_t v = 0; v < inputNames.size(); ++v)
    {
        sources.push_back(&findColumn(survey, inputNames[v]).values);
        columns.push_back(&samples.inputs[v]);
    }
    for (std::size_t w = 0; w < outputNames.size(); ++w)
    {
        sources.push_back(&findColumn(survey, outputNames[w]).values);
        columns.push_back(&samples.outputs[w]);
    }
    for (std::size_t row = 0; row < survey.numRows; ++row)
    {
        if (std::any_of(sources.begin(), sources.end(),
                        [row](const std::vector<double>* source) { return std::isnan((*source)[row]); }))
        {
            ++samples.numSkipped;
            continue;
        }
        for (std::size_t c = 0; c < columns.size(); ++c)
            columns[c]->push_back((*sources[c])[row]);
    }
    return samples;
}

} // namespace krige
