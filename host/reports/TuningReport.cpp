#include "host/reports/TuningReport.h"

#include <cmath>
#include <cstdio>
#include <ostream>
#include <utility>

#include "host/files/CsvReader.h"
#include "host/model/DataForm.h"
#include "host/model/Distance.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

std::string scaleText(const fenn::estimation::ModelSettings& settings)
{
    std::string text;
    for (const double factor : settings.scaleFactors)
        text += (text.empty() ? "" : ",") + formatNumber(factor);
    return text;
}

/// "2.5,30"
std::string anisotropyText(const fenn::analysis::Anisotropy& anisotropy)
{
    return formatNumber(anisotropy.getRatio()) + "," + formatNumber(anisotropy.getAngle());
}

std::string sillText(const std::vector<SillChoice>& sills)
{
    std::string text;
    for (const SillChoice& sill : sills)
    {
        text += text.empty() ? "" : ",";
        text += sill.rule == SillChoice::Rule::Automatic ? "auto"
                : sill.rule == SillChoice::Rule::Sample  ? "sample"
                                                         : formatNumber(sill.value);
    }
    return text;
}

/// "0, 1 and 2"
std::string listOf(const std::vector<std::string>& words)
{
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i)
        text += (i == 0 ? "" : i + 1 == words.size() ? " and " : ", ") + words[i];
    return text;
}

/// "nugget 0 to 0.99", or "nugget 0.1" where both are one.
std::string boundsOf(const char* name, double low, double high)
{
    return std::string(name) + " " + formatFigure(low) + (low == high ? "" : " to " + formatFigure(high));
}

std::string nearestText(int numNearestPoints)
{
    return numNearestPoints == 0 ? "all" : std::to_string(numNearestPoints);
}

const char* nameOf(fenn::analysis::Objective objective)
{
    switch (objective)
    {
    case fenn::analysis::Objective::Likelihood:
        return "likelihood";
    case fenn::analysis::Objective::Rmse:
        return "RMSE";
    case fenn::analysis::Objective::Mae:
        return "MAE";
    case fenn::analysis::Objective::Crps:
        return "CRPS";
    }
    return "";
}

using NamedAssessment = std::pair<const char*, const fenn::analysis::Assessment*>;

void printErrors(std::ostream& out, const char* how, const std::vector<NamedAssessment>& assessments,
                 const std::vector<std::string>& outputNames)
{
    std::vector<std::vector<std::string>> errors{
        {how, "settings", "points", "RMSE", "MAE", "bias", "R2", "MSSE", "CRPS", "in 95 %"}};
    for (std::size_t w = 0; w < outputNames.size(); ++w)
    {
        for (const auto& [name, assessment] : assessments)
        {
            if (assessment->statistics.empty())
                continue;
            const fenn::analysis::ErrorStatistics& figures = assessment->statistics[w];
            const fenn::analysis::Calibration& calibration = assessment->calibrations[w];
            errors.push_back({nameForTable(outputNames[w]), name, std::to_string(figures.numCompared),
                              formatFigure(figures.rmse), formatFigure(figures.mae), formatFigure(figures.bias),
                              formatFigure(figures.r2), formatFigure(calibration.meanSquaredStandardisedError),
                              formatFigure(calibration.crps), formatFigure(100.0 * calibration.coverages[2].actual)});
        }
    }
    if (errors.size() > 1)
    {
        out << '\n';
        printTable(out, errors);
    }
    for (const auto& [name, assessment] : assessments)
    {
        if (!assessment->failure.empty())
            out << name << " fails at the " << how << " samples: " << assessment->failure << '\n';
    }
}

} // namespace

std::string describeSearch(const fenn::analysis::SearchSpace& space, const fenn::analysis::TuningOptions& options,
                           std::size_t numSamples)
{
    std::vector<std::string> orders;
    for (const int order : space.driftOrders)
        orders.push_back(std::to_string(order));
    std::vector<std::string> nearest;
    bool isLocalOnly = !space.numNearestPoints.empty();
    for (const int number : space.numNearestPoints)
    {
        nearest.push_back(nearestText(number));
        isLocalOnly = isLocalOnly && number != 0 && static_cast<std::size_t>(number) < numSamples;
    }
    const bool isByLikelihood = options.objective == fenn::analysis::Objective::Likelihood && !isLocalOnly;
    std::string text = isByLikelihood ? std::string("likelihood; drift and nearest by CRPS in cross-validation")
                       : options.objective == fenn::analysis::Objective::Likelihood
                           ? std::string("CRPS in cross-validation (local models have no likelihood)")
                           : nameOf(options.objective) + std::string(" in cross-validation");
    text += "; drift " + listOf(orders) + ", " + boundsOf("range", space.minRangeFraction, space.maxRangeFraction) +
            ", " + boundsOf("nugget", space.minNugget, space.maxNugget);
    text += space.maxRatio > 1.0 ? ", anisotropy" : space.maxAnisotropy > 1.0 ? ", scales" : "";
    text += nearest.empty() ? "" : ", nearest " + listOf(nearest);
    return text;
}

std::string optionsFor(const Settings& settings)
{
    std::string text = "--drift " + std::to_string(settings.driftOrder) + " --range " +
                       formatDistance(settings.rangeInInputUnits ? Distance{*settings.rangeInInputUnits, true}
                                                                 : Distance{settings.rangeFraction, false}) +
                       " --nugget " + formatNumber(settings.nugget);
    if (settings.numNearestPoints > 0)
        text += " --nearest " + std::to_string(settings.numNearestPoints);
    if (settings.anisotropy) // which has the place of the scale factors
        text += " --anisotropy " + anisotropyText(*settings.anisotropy);
    else if (!settings.scaleFactors.empty())
        text += " --scale " + scaleText(settings);
    if (settings.duplicateTolerance >= 0.0)
        text += " --duplicate-tolerance " + formatNumber(settings.duplicateTolerance);
    else if (settings.keepsDuplicates)
        text += " --duplicates keep";
    if (!settings.sills.empty())
        text += " --sill " + sillText(settings.sills);
    if (settings.units.areLogarithms)
        text += " --transform log";
    const std::string limits = clampText(settings.units.limits);
    if (!limits.empty())
        text += " --clamp " + limits;
    return text;
}

void TrialTable::add(const fenn::analysis::Trial& trial)
{
    if (numTrials == 0)
        stream << "(* best so far of its drift order and number of nearest points)\n"
                  "trial  drift    range   nugget  nearest     "
               << (trial.hasDeviance ? "deviance" : "   score") << "   scale\n";
    char line[160];
    const fenn::estimation::ModelSettings& settings = trial.settings;
    std::snprintf(line, sizeof line, "%5zu  %5d  %7.4g  %7.4g  %7s  %11.5f%s  ", ++numTrials, settings.driftOrder,
                  settings.rangeFraction, settings.nugget, nearestText(settings.numNearestPoints).c_str(),
                  trial.criterion, trial.isBestSoFar ? "*" : " ");
    stream << line
           << (trial.anisotropy                ? "anisotropy " + anisotropyText(*trial.anisotropy)
               : settings.scaleFactors.empty() ? "automatic"
                                               : scaleText(settings));
    if (!trial.failure.empty())
        stream << "  failed: " << trial.failure;
    stream << '\n' << std::flush;
}

std::string csvOfTrials(const fenn::analysis::TuningResult& result, bool hasAnisotropy)
{
    std::string text = std::string("trial,drift,range,nugget,nearest,scale,") + (hasAnisotropy ? "anisotropy," : "") +
                       "deviance,score,winner,failure\n";
    for (std::size_t i = 0; i < result.trials.size(); ++i)
    {
        const fenn::analysis::Trial& trial = result.trials[i];
        text += std::to_string(i + 1) + "," + std::to_string(trial.settings.driftOrder) + ",";
        appendNumber(text, trial.settings.rangeFraction);
        text += ',';
        appendNumber(text, trial.settings.nugget);
        text += "," + std::to_string(trial.settings.numNearestPoints) + ",";
        appendCsvField(text, scaleText(trial.settings));
        text += ',';
        if (hasAnisotropy)
        {
            appendCsvField(text, trial.anisotropy ? anisotropyText(*trial.anisotropy) : "");
            text += ',';
        }
        if (trial.hasDeviance)
            appendNumber(text, trial.criterion);
        text += ',';
        if (!std::isnan(trial.score))
            appendNumber(text, trial.score);
        text += i == result.winner ? ",1," : ",0,";
        appendCsvField(text, trial.failure);
        text += '\n';
    }
    return text;
}

void printTuning(std::ostream& out, const fenn::analysis::TuningResult& result, const Settings& winner,
                 const std::vector<std::string>& outputNames, fenn::analysis::Objective objective)
{
    if (!result.wasCancelled)
    {
        const bool hasHeldOut = !result.heldOutSamples.empty();
        std::vector<std::vector<std::string>> scores{{"score", "cross-validated"}};
        scores.push_back({"start", formatFigure(result.startCrossValidated.score)});
        scores.push_back({"winner", formatFigure(result.winnerCrossValidated.score)});
        if (hasHeldOut)
        {
            scores[0].emplace_back("held out");
            scores[1].push_back(formatFigure(result.startHeldOut.score));
            scores[2].push_back(formatFigure(result.winnerHeldOut.score));
        }
        printTable(out, scores);
        const bool isByLikelihood = objective == fenn::analysis::Objective::Likelihood;
        out << "(score: mean over outputs of " << nameOf(isByLikelihood ? fenn::analysis::Objective::Crps : objective)
            << " / standard deviation"
            << (!winner.units.areLogarithms ? ""
                : isByLikelihood            ? ", of the logarithms"
                                            : ", in the data's units")
            << "; lower is better)\n";
        if (winner.units.areLogarithms)
            out << "(below, errors are in the data's units; MSSE, CRPS and coverage are of the logarithms)\n";
        printErrors(out, "cross-validated",
                    {{"start", &result.startCrossValidated}, {"winner", &result.winnerCrossValidated}}, outputNames);
        if (hasHeldOut)
            printErrors(out, "held-out", {{"start", &result.startHeldOut}, {"winner", &result.winnerHeldOut}},
                        outputNames);
        out << '\n';
    }
    out << (result.wasCancelled ? "best so far" : "winner") << ", trial " << result.winner + 1 << " of "
        << result.trials.size() << ": " << optionsFor(winner) << '\n';
}

} // namespace krige
