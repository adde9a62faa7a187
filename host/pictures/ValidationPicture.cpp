#include "host/pictures/ValidationPicture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "analysis/Calibration.h"
#include "analysis/NormalDistribution.h"
#include "host/pictures/MapPanel.h"
#include "host/pictures/Picture.h"
#include "host/pictures/QuantityName.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

constexpr std::size_t panelsPerOutput = 4;
constexpr std::size_t panelsPerRowOfOne = 2; // of a single output
constexpr const char* equalityLine = "x with lines lc rgb '#666666' dt 2 lw 1.5";

/// Dots that show where many of them lie, and each of them where few do.
std::string dots(const std::string& data, std::size_t numPoints)
{
    const std::string size = pointSize(numPoints > 2000 ? 0.4 : 0.8);
    return data + " using 1:2 with points pt 7 " + size + " lc rgb '#cc21918c' notitle, " + data +
           " using 1:2 with points pt 6 " + size + " lc rgb '#21918c' notitle";
}

/// Three significant digits.
std::string shortFigure(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", value);
    return text;
}

class ValidationDrawing
{
public:
    ValidationDrawing(Picture& picture_, const std::string& inputUnits_, const ValidationResult& result_)
        : picture(picture_), inputUnits(inputUnits_), result(result_)
    {
    }

    void addOutput(std::size_t w, const QuantityName& output, const ValidationFigures& figures)
    {
        addScatter(w, output, figures);
        addErrors(w, output, figures);
        addCalibration(w, figures);
        if (result.inputs.size() == 1)
            addErrorsAlong(w, output);
        else
            addErrorMap(w, output);
    }

private:
    static Panel startPanel(const std::string& title, const PanelAxis& x, const PanelAxis& y, const char* key)
    {
        Panel panel;
        panel.title = title;
        panel.x = x;
        panel.y = y;
        panel.isSquare = true;
        panel.hasGrid = true;
        panel.commands = "set key " + std::string(key) + "\n";
        return panel;
    }

    void addScatter(std::size_t w, const QuantityName& output, const ValidationFigures& figures)
    {
        std::vector<double> both = result.truths[w];
        both.insert(both.end(), result.estimates[w].begin(), result.estimates[w].end());
        const AxisRange range = rangeAround(both, 0.05);
        const fenn::analysis::ErrorStatistics& errors = figures.errors;
        Panel panel = startPanel("RMSE " + shortFigure(errors.rmse) + ", R\xc2\xb2 " + shortFigure(errors.r2) + ", " +
                                     countOf(errors.numCompared, "point"),
                                 {range, "measured " + output.name, output.unit},
                                 {range, "estimated " + output.name, output.unit}, "top left reverse Left samplen 2");
        panel.plots = std::string(equalityLine) + " title 'estimate = measured', " +
                      dots(picture.addData({result.truths[w], result.estimates[w]}), errors.numCompared);
        picture.addPanel(panel);
    }

    void addErrors(std::size_t w, const QuantityName& output, const ValidationFigures& figures)
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
            return "'+' using 1:(-" + text + "*$1):(" + text + "*$1) with filledcurves lc rgb '" + colour +
                   "' title '" + name + "', ";
        };
        Panel panel = startPanel("MSSE " + shortFigure(figures.calibration.meanSquaredStandardisedError) + ", CRPS " +
                                     shortFigure(figures.calibration.crps),
                                 {{0.0, width}, "standard error of " + output.name, output.unit},
                                 {{-height, height}, "error: estimated - measured", output.unit},
                                 "top left reverse Left samplen 2");
        panel.plots = band(most, "#e3eef0", "95 % interval") + band(half, "#b3d5d9", "50 % interval") +
                      "0 with lines lc rgb '#666666' dt 2 lw 1.5 notitle, " +
                      dots(picture.addData({figures.standardErrors, errors}), figures.calibration.numUsed);
        picture.addPanel(panel);
    }

    void addCalibration(std::size_t w, const ValidationFigures& figures)
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
        const AxisRange percent{0.0, 100.0};
        Panel panel =
            startPanel("95 % intervals hold " + shortFigure(100.0 * figures.calibration.coverages.back().actual) + " %",
                       {percent, "to be held by the interval", "%"}, {percent, "measured values in it", "%"},
                       "bottom right samplen 2");
        panel.plots = "'+' using 1:($1-" + off + "):($1+" + off +
                      ") with filledcurves lc rgb '#e3eef0' title 'allowed by chance', " + equalityLine +
                      " title 'as promised', " + picture.addData(curve) +
                      " using 1:2 with lines lw 2.5 lc rgb '#440154' title 'found'";
        picture.addPanel(panel);
    }

    std::vector<double> calcErrors(std::size_t w) const
    {
        std::vector<double> errors;
        for (std::size_t i = 0; i < result.truths[w].size(); ++i)
            errors.push_back(result.estimates[w][i] - result.truths[w][i]);
        return errors;
    }

    PanelAxis inputAxis(std::size_t input) const
    {
        const QuantityName name = nameQuantity(result.inputNames[input], inputUnits);
        return {rangeAround(result.inputs[input], 0.05), name.name, name.unit};
    }

    void addErrorMap(std::size_t w, const QuantityName& output)
    {
        const std::vector<double> errors = calcErrors(w);
        Panel panel = startPanel("errors at their places", inputAxis(0), inputAxis(1), "");
        panel.isSquare = false;
        panel.hasOneScale = haveOneScale(panel.x.range, panel.y.range);
        panel.hasKeyAbove = true;
        panel.commands.clear();
        panel.colours = ColourKey{};
        panel.colours->palette = errorPalette();
        panel.colours->name = "error of " + output.name;
        panel.colours->unit = output.unit;
        chooseSymmetricLimits(*panel.colours, errors);
        std::vector<std::vector<double>> tooHigh(3);
        std::vector<std::vector<double>> tooLow(3);
        for (std::size_t i = 0; i < errors.size(); ++i)
        {
            if (std::isnan(errors[i]))
                continue;
            std::vector<std::vector<double>>& side = errors[i] < 0.0 ? tooLow : tooHigh;
            side[0].push_back(result.inputs[0][i]);
            side[1].push_back(result.inputs[1][i]);
            side[2].push_back(errors[i]);
        }
        panel.plots = triangles(tooHigh, 9, "too high") + ", " + triangles(tooLow, 11, "too low");
        picture.addPanel(panel);
    }

    /// The sign of an error is the way a triangle points, for in grey both ends of the colours are alike.
    std::string triangles(const std::vector<std::vector<double>>& places, int filled, const char* name)
    {
        const std::string size = pointSize(places[0].size() > 500 ? 0.8 : 1.4);
        const auto points = [&](int type)
        {
            return " with points pt " + std::to_string(type) + " " + size;
        };
        std::string text = "NaN with points pt " + std::to_string(filled - 1) + " " + pointSize(1.4) +
                           " lc rgb '#333333' title '" + name + "'";
        if (places[0].empty())
            return text;
        const std::string data = picture.addData(places);
        text += ", " + data + " using 1:2:3" + points(filled) + " palette notitle";
        return text + ", " + data + " using 1:2" + points(filled - 1) + " lw 0.7 lc rgb '#333333' notitle";
    }

    void addErrorsAlong(std::size_t w, const QuantityName& output)
    {
        const std::vector<double> errors = calcErrors(w);
        std::vector<double> heights = errors;
        heights.push_back(0.0);
        Panel panel = startPanel("errors along " + result.inputNames[0], inputAxis(0),
                                 {rangeAround(heights, 0.05), "error of " + output.name, output.unit},
                                 "top left reverse Left samplen 2");
        panel.plots = "0 with lines lc rgb '#666666' dt 2 lw 1.5 notitle, " +
                      dots(picture.addData({result.inputs[0], errors}), errors.size());
        picture.addPanel(panel);
    }

    Picture& picture;
    const std::string& inputUnits;
    const ValidationResult& result;
};

} // namespace

void drawValidation(const PictureOptions& options, const std::string& inputUnits, const ValidationResult& result,
                    const std::vector<ValidationFigures>& figures)
{
    Picture picture(figures.size() == 1 ? panelsPerRowOfOne : panelsPerOutput, options.title, options.size);
    ValidationDrawing drawing(picture, inputUnits, result);
    for (std::size_t w = 0; w < figures.size(); ++w)
        drawing.addOutput(w, nameQuantity(result.outputNames[w], options.unitOf(w)), figures[w]);
    picture.save(options.path);
}

} // namespace krige
