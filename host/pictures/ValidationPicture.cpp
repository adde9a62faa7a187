#include "host/pictures/ValidationPicture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "analysis/Calibration.h"
#include "analysis/NormalDistribution.h"
#include "host/pictures/Gnuplot.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

constexpr std::size_t panelsPerOutput = 3;
constexpr int panelSize = 560;
constexpr const char* look = "set size square\nset grid lc rgb '#dddddd'\n";

/// Dots that show where many of them lie, and each of them where few do.
std::string dots(const std::string& data, std::size_t numPoints)
{
    const std::string size = formatNumber(numPoints > 2000 ? 0.4 : 0.8);
    return data + " using 1:2 with points pt 7 ps " + size + " lc rgb '#cc21918c' notitle, " + data +
           " using 1:2 with points pt 6 ps " + size + " lc rgb '#21918c' notitle\n";
}

/// Three significant digits.
std::string shortFigure(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", value);
    return text;
}

std::string title(const std::string& text)
{
    return "set title " + quoteForGnuplot(text) + "\n";
}

void addScatter(Picture& picture, const ValidationResult& result, std::size_t w, const ValidationFigures& figures)
{
    const std::string data = picture.addData({result.truths[w], result.estimates[w]});
    std::vector<double> both = result.truths[w];
    both.insert(both.end(), result.estimates[w].begin(), result.estimates[w].end());
    const std::string range = plotRange(both, 0.05);
    const fenn::analysis::ErrorStatistics& errors = figures.errors;
    picture.addPanel(look + std::string("set key top left reverse Left samplen 2\n") +
                     title("RMSE " + shortFigure(errors.rmse) + ", R2 " + shortFigure(errors.r2) + ", " +
                           countOf(errors.numCompared, "point")) +
                     "set xrange " + range + "\nset yrange " + range + "\nset xlabel " +
                     quoteForGnuplot("measured " + result.outputNames[w]) + "\nset ylabel " +
                     quoteForGnuplot("estimated " + result.outputNames[w]) +
                     "\nplot x with lines lc rgb '#666666' dt 2 lw 1.5 title 'estimate = measured', " +
                     dots(data, errors.numCompared));
}

void addErrors(Picture& picture, const ValidationResult& result, std::size_t w, const ValidationFigures& figures)
{
    std::vector<double> errors;
    double largest = 0.0;
    double largestStandardError = 0.0;
    for (std::size_t i = 0; i < result.truths[w].size(); ++i)
    {
        errors.push_back(result.getModelEstimates(w)[i] - result.getModelTruths(w)[i]);
        if (std::isnan(errors.back()) || std::isnan(figures.standardErrors[i]))
            continue;
        largest = std::max(largest, std::fabs(errors.back()));
        largestStandardError = std::max(largestStandardError, figures.standardErrors[i]);
    }
    const double width = largestStandardError > 0.0 ? 1.05 * largestStandardError : 1.0;
    const double half = fenn::analysis::intervalFactor(0.5);
    const double most = fenn::analysis::intervalFactor(0.95);
    const double height = 1.05 * std::max(largest, most * width);
    const auto band = [](double factor, const char* colour, const char* name)
    {
        const std::string text = formatNumber(factor);
        return "'+' using 1:(-" + text + "*$1):(" + text + "*$1) with filledcurves lc rgb '" + colour + "' title '" +
               name + "', ";
    };
    const std::string data = picture.addData({figures.standardErrors, errors});
    picture.addPanel(look + std::string("set key top left reverse Left samplen 2\n") +
                     title("MSSE " + shortFigure(figures.calibration.meanSquaredStandardisedError) + ", CRPS " +
                           shortFigure(figures.calibration.crps)) +
                     "set xrange [0:" + formatNumber(width) + "]\nset yrange [" + formatNumber(-height) + ":" +
                     formatNumber(height) + "]\nset xlabel " +
                     quoteForGnuplot("standard error of " + result.outputNames[w]) + "\nset ylabel " +
                     quoteForGnuplot("error: estimated - measured") + "\nplot " +
                     band(most, "#e3eef0", "95 % interval") + band(half, "#c2dde0", "50 % interval") +
                     "0 with lines lc rgb '#666666' dt 2 lw 1.5 notitle, " + dots(data, figures.calibration.numUsed));
}

void addCalibration(Picture& picture, const ValidationResult& result, std::size_t w, const ValidationFigures& figures)
{
    constexpr std::size_t numIntervals = 99;
    std::vector<std::vector<double>> curve(2);
    for (const fenn::analysis::IntervalCoverage& coverage : fenn::analysis::calcCalibrationCurve(
             result.getModelTruths(w), result.getModelEstimates(w), figures.standardErrors, numIntervals))
    {
        curve[0].push_back(100.0 * coverage.nominal);
        curve[1].push_back(100.0 * coverage.actual);
    }
    // A share of independent errors varies by this much around the one that it is to be, at 19 times of 20.
    const double numUsed = static_cast<double>(std::max<std::size_t>(figures.calibration.numUsed, 1));
    const std::string chance = formatNumber(fenn::analysis::intervalFactor(0.95) / std::sqrt(numUsed));
    const std::string off = chance + "*sqrt($1*(100-$1))";
    picture.addPanel(
        look + std::string("set key bottom right opaque samplen 2\n") +
        title("95 % intervals hold " + shortFigure(100.0 * figures.calibration.coverages.back().actual) + " %") +
        "set xrange [0:100]\nset yrange [0:100]\nset xlabel 'to be held by the interval (%)'\nset ylabel 'measured "
        "values in "
        "it (%)'\nplot '+' using 1:($1-" +
        off + "):($1+" + off +
        ") with filledcurves lc rgb '#e3eef0' title 'allowed by chance', x with lines lc rgb '#666666' dt 2 lw 1.5 "
        "title 'as promised', " +
        picture.addData(curve) + " using 1:2 with lines lw 2.5 lc rgb '#440154' title 'found'\n");
}

} // namespace

void drawValidation(const std::string& path, const ValidationResult& result,
                    const std::vector<ValidationFigures>& figures)
{
    Picture picture(panelsPerOutput, panelSize, panelSize);
    for (std::size_t w = 0; w < figures.size(); ++w)
    {
        addScatter(picture, result, w, figures[w]);
        addErrors(picture, result, w, figures[w]);
        addCalibration(picture, result, w, figures[w]);
    }
    picture.save(path);
}

} // namespace krige
