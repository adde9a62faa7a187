#include "host/page/ValidationSection.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "analysis/Calibration.h"
#include "analysis/Distribution.h"
#include "analysis/NormalDistribution.h"
#include "host/page/Chart.h"
#include "host/page/DataSection.h"
#include "host/page/Html.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

std::string percentText(double fraction)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.0f %%", 100.0 * fraction);
    return std::isnan(fraction) ? "nan" : text;
}

/// Three significant digits, or all before the point.
std::string shortFigure(double value)
{
    char text[32];
    const bool isLarge = std::fabs(value) >= 1000.0 && std::fabs(value) < 1e7;
    std::snprintf(text, sizeof text, isLarge ? "%.0f" : "%.3g", value);
    return std::isnan(value) ? "nan" : text;
}

std::vector<double> errorsOf(const ValidationResult& result, std::size_t w)
{
    std::vector<double> errors;
    for (std::size_t i = 0; i < result.lines.size(); ++i)
        errors.push_back(result.estimates[w][i] - result.truths[w][i]);
    return errors;
}

std::string tableOfFigures(const ValidationResult& result, const std::vector<ValidationFigures>& figures)
{
    std::vector<std::vector<std::string>> rows{{"output", "samples", "RMSE", "MAE", "bias", "R2", "MSSE", "CRPS"}};
    for (const fenn::analysis::IntervalCoverage& coverage : figures.front().calibration.coverages)
        rows[0].push_back("in " + percentText(coverage.nominal));
    for (std::size_t w = 0; w < figures.size(); ++w)
    {
        const fenn::analysis::ErrorStatistics& errors = figures[w].errors;
        const fenn::analysis::Calibration& calibration = figures[w].calibration;
        rows.push_back({result.outputNames[w], std::to_string(errors.numCompared)});
        for (const double figure : {errors.rmse, errors.mae, errors.bias, errors.r2,
                                    calibration.meanSquaredStandardisedError, calibration.crps})
            rows.back().push_back(formatFigure(figure));
        for (const fenn::analysis::IntervalCoverage& coverage : calibration.coverages)
            rows.back().push_back(percentText(coverage.actual));
    }
    return tableOf(rows);
}

std::string scatterOf(const ValidationResult& result, std::size_t w)
{
    const std::string& name = result.outputNames[w];
    std::vector<double> both = result.truths[w];
    both.insert(both.end(), result.estimates[w].begin(), result.estimates[w].end());
    const Axis axis = axisOver(both, 0.05, 2);
    const double low = axis.getLow();
    const double high = axis.getHigh();
    Chart chart({low, high, low, high, "measured " + name, "estimated " + name, 1.0});
    chart.addLine({low, high}, {low, high}, "guide");
    const std::vector<std::size_t> drawn = thinned(result.lines.size(), mostDots);
    chart.addDots(valuesAt(result.truths[w], drawn), valuesAt(result.estimates[w], drawn), styleOfDots(drawn.size()));
    return figureOf("Estimated over measured " + name + ": on the dashed line both are equal",
                    chart.toSvg("Scatter of estimated over measured " + name));
}

std::string errorsAlong(const ValidationResult& result, std::size_t w, const std::string& units)
{
    const std::vector<double> errors = errorsOf(result, w);
    const std::vector<std::size_t> drawn = thinned(errors.size(), mostDots);
    const Axis x = axisOver(result.inputs[0], 0.03, 2);
    const Axis y = axisOver(errors, 0.05, 2);
    Chart chart({x.getLow(), x.getHigh(), std::min(y.getLow(), 0.0), std::max(y.getHigh(), 0.0),
                 nameWithUnits(result.inputNames[0], units), "error of " + result.outputNames[w], 0.65});
    chart.addLine({x.getLow(), x.getHigh()}, {0.0, 0.0}, "guide");
    chart.addDots(valuesAt(result.inputs[0], drawn), valuesAt(errors, drawn), styleOfDots(drawn.size()));
    return figureOf("Errors, estimated less measured, over " + result.inputNames[0],
                    chart.toSvg("Errors of " + result.outputNames[w]));
}

std::string mapOfErrors(const ValidationResult& result, std::size_t w, const std::string& units)
{
    const std::vector<double> errors = errorsOf(result, w);
    const std::vector<std::size_t> drawn = thinned(errors.size(), mostDots);
    const Axis x = axisOver(result.inputs[0], 0.04, 2);
    const Axis y = axisOver(result.inputs[1], 0.04, 2);
    ColourBar bar{scaleOverErrors(errors), "estimated less measured"};
    bar.isExceededAbove =
        std::any_of(errors.begin(), errors.end(), [&](double e) { return e > bar.colours.getHigh(); });
    bar.isExceededBelow = std::any_of(errors.begin(), errors.end(), [&](double e) { return e < bar.colours.getLow(); });
    Chart chart({x.getLow(), x.getHigh(), y.getLow(), y.getHigh(), nameWithUnits(result.inputNames[0], units),
                 nameWithUnits(result.inputNames[1], units),
                 ratioOfMap(x.getHigh() - x.getLow(), y.getHigh() - y.getLow())},
                bar);
    chart.addColouredDots(valuesAt(result.inputs[0], drawn), valuesAt(result.inputs[1], drawn),
                          valuesAt(errors, drawn));
    return figureOf("Where " + result.outputNames[w] +
                        " is estimated too high (red) and too low (blue): neighbours of one colour are a trend that "
                        "the model misses",
                    chart.toSvg("Map of the errors of " + result.outputNames[w]));
}

std::string calibrationOf(const ValidationResult& result, std::size_t w, const ValidationFigures& figures)
{
    constexpr std::size_t numIntervals = 99;
    std::vector<double> nominal;
    std::vector<double> actual;
    std::vector<double> low;
    std::vector<double> high;
    // A share of independent errors varies by this much around the one that it is to be, at 19 times of 20.
    const auto numUsed = static_cast<double>(std::max<std::size_t>(figures.calibration.numUsed, 1));
    const double chance = fenn::analysis::intervalFactor(0.95) / std::sqrt(numUsed);
    for (const fenn::analysis::IntervalCoverage& coverage : fenn::analysis::calcCalibrationCurve(
             result.getModelTruths(w), result.getModelEstimates(w), figures.standardErrors, numIntervals))
    {
        const double off = chance * std::sqrt(coverage.nominal * (1.0 - coverage.nominal));
        nominal.push_back(100.0 * coverage.nominal);
        actual.push_back(100.0 * coverage.actual);
        low.push_back(100.0 * (coverage.nominal - off));
        high.push_back(100.0 * (coverage.nominal + off));
    }
    Chart chart({0.0, 100.0, 0.0, 100.0, "to be held by the interval (%)", "measured values in it (%)", 1.0});
    chart.addBand(nominal, low, high, "band");
    chart.addLine({0.0, 100.0}, {0.0, 100.0}, "guide");
    chart.addLine(nominal, actual, "curve");
    return figureOf("What intervals of " + result.outputNames[w] +
                        " hold: below the band they are too narrow, above it too wide, within it chance explains it",
                    chart.toSvg("Calibration of " + result.outputNames[w]));
}

std::string worstOf(const ValidationResult& result, std::size_t w, const ValidationFigures& figures)
{
    if (figures.errors.worstPoints.empty())
        return "";
    std::vector<std::vector<std::string>> rows{{"line"}};
    for (const std::string& name : result.inputNames)
        rows[0].push_back(name);
    for (const char* const title : {"measured", "estimated", "error", "standard error"})
        rows[0].emplace_back(title);
    for (const std::size_t i : figures.errors.worstPoints)
    {
        rows.push_back({result.lines[i]});
        for (const std::vector<double>& input : result.inputs)
            rows.back().push_back(formatFigure(input[i]));
        for (const double value : {result.truths[w][i], result.estimates[w][i],
                                   result.estimates[w][i] - result.truths[w][i], figures.standardErrors[i]})
            rows.back().push_back(formatFigure(value));
    }
    return paragraphOf("Worst estimates of " + result.outputNames[w] + ", by their lines in the file:", "lead") +
           tableOf(rows, "worst");
}

} // namespace

std::vector<std::string> sentencesOfValidation(const ValidationResult& result,
                                               const std::vector<ValidationFigures>& figures)
{
    std::vector<std::string> sentences;
    for (std::size_t w = 0; w < figures.size(); ++w)
    {
        const double spread = fenn::analysis::describeValues(result.truths[w]).standardDeviation;
        sentences.push_back(result.outputNames[w] + ": estimates of samples left out are off by " +
                            shortFigure(figures[w].errors.rmse) + " (RMSE), where the values themselves vary by " +
                            shortFigure(spread) + " (standard deviation); their 95 % intervals hold " +
                            percentText(figures[w].calibration.coverages.back().actual) + " of the measured values.");
    }
    return sentences;
}

std::string validationSection(const ValidationResult& result, const std::vector<ValidationFigures>& figures,
                              const std::string& method, const std::string& units, bool areLogarithms)
{
    std::string html = paragraphOf("Each sample is estimated from the samples outside its part: " + method + ".") +
                       tableOfFigures(result, figures);
    html += paragraphOf("Errors are estimated less measured. RMSE: root mean square error; MAE: mean size of an error; "
                        "bias: mean error; R2: share of the variance that the estimates explain; MSSE: mean square of "
                        "error over standard error, 1 where standard errors are right; CRPS: continuous ranked "
                        "probability score, lower is better; then what the intervals of 50, 90 and 95 % hold.",
                        "legend");
    if (areLogarithms)
        html += paragraphOf("Errors are in the data's units; MSSE, CRPS, standard errors and intervals are of the "
                            "logarithms.");
    for (std::size_t w = 0; w < figures.size(); ++w)
    {
        const bool isLine = result.inputs.size() == 1;
        html += sideBySide({scatterOf(result, w), calibrationOf(result, w, figures[w]),
                            isLine ? errorsAlong(result, w, units) : mapOfErrors(result, w, units)});
        html += worstOf(result, w, figures[w]);
    }
    if (result.lines.size() > mostDots)
        html += paragraphOf("Pictures show " + std::to_string(mostDots) + " of the " +
                            std::to_string(result.lines.size()) + " samples, evenly chosen; figures take all.");
    return html;
}

} // namespace krige
