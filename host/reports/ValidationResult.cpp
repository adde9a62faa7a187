#include "host/reports/ValidationResult.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "host/files/CsvReader.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

double ValidationResult::getStandardError(std::size_t output, std::size_t point) const
{
    return std::sqrt(variances[point] * outputVariances[output]);
}

std::vector<fenn::analysis::ErrorStatistics> summarise(const ValidationResult& result, std::size_t numWorst)
{
    std::vector<fenn::analysis::ErrorStatistics> statistics;
    for (std::size_t w = 0; w < result.truths.size(); ++w)
        statistics.push_back(fenn::analysis::calcErrorStatistics(
            result.truths[w], result.estimates[w], result.variances, result.outputVariances[w], numWorst));
    return statistics;
}

void printErrors(std::ostream& out, const ValidationResult& result,
                 const std::vector<fenn::analysis::ErrorStatistics>& statistics)
{
    std::vector<std::vector<std::string>> rows{{"output", "points", "RMSE", "MAE", "bias", "R2", "MSSE", "worst"}};
    for (std::size_t w = 0; w < statistics.size(); ++w)
    {
        const fenn::analysis::ErrorStatistics& errors = statistics[w];
        rows.push_back({nameForTable(result.outputNames[w]), std::to_string(errors.numCompared),
                        formatFigure(errors.rmse), formatFigure(errors.mae), formatFigure(errors.bias),
                        formatFigure(errors.r2), formatFigure(errors.meanSquaredStandardisedError),
                        formatFigure(errors.worstError)});
    }
    printTable(out, rows);
}

void printWorstPoints(std::ostream& out, const ValidationResult& result,
                      const std::vector<fenn::analysis::ErrorStatistics>& statistics)
{
    for (std::size_t w = 0; w < statistics.size(); ++w)
    {
        if (statistics[w].worstPoints.empty())
            continue;
        out << "\nworst of " << nameForTable(result.outputNames[w]) << ":\n";
        std::vector<std::vector<std::string>> rows{{"line"}};
        for (const std::string& name : result.inputNames)
            rows[0].push_back(nameForTable(name));
        for (const char* const title : {"measured", "estimate", "error", "stderr"})
            rows[0].emplace_back(title);
        for (const std::size_t i : statistics[w].worstPoints)
        {
            rows.push_back({result.lines[i]});
            for (const std::vector<double>& input : result.inputs)
                rows.back().push_back(formatFigure(input[i]));
            for (const double value : {result.truths[w][i], result.estimates[w][i],
                                       result.estimates[w][i] - result.truths[w][i], result.getStandardError(w, i)})
                rows.back().push_back(formatFigure(value));
        }
        printTable(out, rows);
    }
}

std::string csvOfPoints(const ValidationResult& result)
{
    std::string text = "line";
    for (const std::string& name : result.inputNames)
    {
        text += ',';
        appendCsvField(text, name);
    }
    for (const std::string& name : result.outputNames)
    {
        for (const char* const suffix : {"", "_estimate", "_error", "_stderr"})
        {
            text += ',';
            appendCsvField(text, name + suffix);
        }
    }
    text += ",variance\n";
    const auto append = [&text](double value)
    {
        text += ',';
        appendNumber(text, value);
    };
    for (std::size_t i = 0; i < result.lines.size(); ++i)
    {
        text += result.lines[i];
        for (const std::vector<double>& input : result.inputs)
            append(input[i]);
        for (std::size_t w = 0; w < result.truths.size(); ++w)
        {
            append(result.truths[w][i]);
            append(result.estimates[w][i]);
            append(result.estimates[w][i] - result.truths[w][i]);
            append(result.getStandardError(w, i));
        }
        append(result.variances[i]);
        text += '\n';
    }
    return text;
}

} // namespace krige
