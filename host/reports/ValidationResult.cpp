#include "host/reports/ValidationResult.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ostream>

#include "estimation/StandardError.h"
#include "host/files/CsvReader.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

/// With one decimal: few validations have more than a thousand points.
std::string formatPercentage(double fraction)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", 100.0 * fraction);
    return text;
}

} // namespace

std::vector<double> ValidationResult::calcStandardErrors(std::size_t output) const
{
    std::vector<double> errors;
    for (std::size_t i = 0; i < variances.size(); ++i)
        errors.push_back(
            fenn::estimation::standardErrorOf(fenn::estimation::comparableVariance(variances[i]), sills[output][i]));
    return errors;
}

void ValidationResult::bringIntoUnits(const fenn::analysis::OutputUnits& units,
                                      const std::vector<double>& driftProducts)
{
    if (units == fenn::analysis::OutputUnits())
        return;
    modelTruths = truths;
    modelEstimates = estimates;
    for (std::size_t w = 0; w < truths.size(); ++w)
    {
        for (std::size_t i = 0; i < lines.size(); ++i)
        {
            truths[w][i] = units.areLogarithms ? std::exp(truths[w][i]) : truths[w][i];
            estimates[w][i] = units.estimateOf(estimates[w][i], variances[i], driftProducts[i], sills[w][i]);
        }
    }
}

std::vector<ValidationFigures> summarise(const ValidationResult& result, std::size_t numWorst)
{
    std::vector<ValidationFigures> figures;
    for (std::size_t w = 0; w < result.truths.size(); ++w)
    {
        std::vector<double> standardErrors = result.calcStandardErrors(w);
        figures.push_back(
            {fenn::analysis::calcErrorStatistics(result.truths[w], result.estimates[w], {}, 1.0, numWorst),
             fenn::analysis::calcCalibration(result.getModelTruths(w), result.getModelEstimates(w), standardErrors),
             std::move(standardErrors)});
    }
    return figures;
}

void printErrors(std::ostream& out, const ValidationResult& result, const std::vector<ValidationFigures>& figures)
{
    std::vector<std::vector<std::string>> rows{
        {"output", "points", "RMSE", "MAE", "bias", "R2", "MSSE", "worst", "CRPS"}};
    for (const fenn::analysis::IntervalCoverage& coverage : figures.front().calibration.coverages)
        rows[0].push_back("in" + formatFigure(100.0 * coverage.nominal) + "%");
    for (std::size_t w = 0; w < figures.size(); ++w)
    {
        const fenn::analysis::ErrorStatistics& errors = figures[w].errors;
        const fenn::analysis::Calibration& calibration = figures[w].calibration;
        rows.push_back({nameForTable(result.outputNames[w]), std::to_string(errors.numCompared),
                        formatFigure(errors.rmse), formatFigure(errors.mae), formatFigure(errors.bias),
                        formatFigure(errors.r2), formatFigure(calibration.meanSquaredStandardisedError),
                        formatFigure(errors.worstError), formatFigure(calibration.crps)});
        for (const fenn::analysis::IntervalCoverage& coverage : calibration.coverages)
            rows.back().push_back(formatPercentage(coverage.actual));
    }
    printTable(out, rows);
}

void printWorstPoints(std::ostream& out, const ValidationResult& result, const std::vector<ValidationFigures>& figures)
{
    for (std::size_t w = 0; w < figures.size(); ++w)
    {
        if (figures[w].errors.worstPoints.empty())
            continue;
        out << "\nworst of " << nameForTable(result.outputNames[w]) << ":\n";
        std::vector<std::vector<std::string>> rows{{"line"}};
        for (const std::string& name : result.inputNames)
            rows[0].push_back(nameForTable(name));
        for (const char* const title : {"measured", "estimate", "error", "stderr"})
            rows[0].emplace_back(title);
        for (const std::size_t i : figures[w].errors.worstPoints)
        {
            rows.push_back({result.lines[i]});
            for (const std::vector<double>& input : result.inputs)
                rows.back().push_back(formatFigure(input[i]));
            for (const double value : {result.truths[w][i], result.estimates[w][i],
                                       result.estimates[w][i] - result.truths[w][i], figures[w].standardErrors[i]})
                rows.back().push_back(formatFigure(value));
        }
        printTable(out, rows);
    }
}

std::string csvOfPoints(const ValidationResult& result, const std::vector<ValidationFigures>& figures)
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
            append(figures[w].standardErrors[i]);
        }
        append(fenn::estimation::comparableVariance(result.variances[i]));
        text += '\n';
    }
    return text;
}

} // namespace krige
