#include "host/reports/TuningReport.h"

#include <cstdio>
#include <ostream>

#include "host/files/CsvReader.h"
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

} // namespace

std::string optionsFor(const fenn::estimation::ModelSettings& settings)
{
    std::string text = "--drift " + std::to_string(settings.driftOrder) + " --range " +
                       formatDistance(settings.rangeInInputUnits ? Distance{*settings.rangeInInputUnits, true}
                                                                 : Distance{settings.rangeFraction, false}) +
                       " --nugget " + formatNumber(settings.nugget);
    if (settings.numNearestPoints > 0)
        text += " --nearest " + std::to_string(settings.numNearestPoints);
    if (!settings.scaleFactors.empty())
        text += " --scale " + scaleText(settings);
    if (settings.duplicateTolerance >= 0.0)
        text += " --duplicate-tolerance " + formatNumber(settings.duplicateTolerance);
    return text;
}

void TrialTable::add(const fenn::analysis::Trial& trial)
{
    const bool isStart = numTrials == 0;
    if (isStart)
    {
        startScore = trial.score;
        stream << "(* best so far; unusual settings count against a score where samples are few)\n"
                  "trial  drift    range   nugget  nearest     score   scale\n";
    }
    // As the search chooses: Tuning.h.
    const bool isBest = isStart || (trial.score <= startScore && trial.penalisedScore < bestScore);
    if (isBest)
        bestScore = trial.penalisedScore;
    char line[160];
    const fenn::estimation::ModelSettings& settings = trial.settings;
    std::snprintf(line, sizeof line, "%5zu  %5d  %7.4g  %7.4g  %7s  %8.5f%s  ", ++numTrials, settings.driftOrder,
                  settings.rangeFraction, settings.nugget,
                  settings.numNearestPoints == 0 ? "all" : std::to_string(settings.numNearestPoints).c_str(),
                  trial.score, isBest && trial.failure.empty() ? "*" : " ");
    stream << line << (settings.scaleFactors.empty() ? "automatic" : scaleText(settings));
    if (!trial.failure.empty())
        stream << "  failed: " << trial.failure;
    stream << '\n' << std::flush;
}

std::string csvOfTrials(const fenn::analysis::TuningResult& result)
{
    std::string text = "trial,drift,range,nugget,nearest,scale,score,penalised_score,winner,failure\n";
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
        appendNumber(text, trial.score);
        text += ',';
        appendNumber(text, trial.penalisedScore);
        text += i == result.winner ? ",1," : ",0,";
        appendCsvField(text, trial.failure);
        text += '\n';
    }
    return text;
}

void printTuning(std::ostream& out, const fenn::analysis::TuningResult& result,
                 const std::vector<std::string>& outputNames, fenn::analysis::Objective objective)
{
    const bool hasHeldOut = !result.heldOutSamples.empty();
    std::vector<std::vector<std::string>> scores{{"score", "cross-validated"}};
    scores.push_back({"start", formatFigure(result.trials[0].score)});
    scores.push_back({"winner", formatFigure(result.trials[result.winner].score)});
    if (hasHeldOut)
    {
        scores[0].emplace_back("held out");
        scores[1].push_back(formatFigure(result.startHeldOut.score));
        scores[2].push_back(formatFigure(result.winnerHeldOut.score));
    }
    printTable(out, scores);
    out << "(score: mean over outputs of " << (objective == fenn::analysis::Objective::Rmse ? "RMSE" : "MAE")
        << " / standard deviation; lower is better)\n";

    std::vector<std::vector<std::string>> errors{
        {"held out", "settings", "points", "RMSE", "MAE", "bias", "R2", "MSSE"}};
    for (std::size_t w = 0; w < outputNames.size() && hasHeldOut; ++w)
    {
        for (const bool isWinner : {false, true})
        {
            const fenn::analysis::HeldOutScore& held = isWinner ? result.winnerHeldOut : result.startHeldOut;
            if (!held.failure.empty())
                continue;
            const fenn::analysis::ErrorStatistics& figures = held.statistics[w];
            errors.push_back({nameForTable(outputNames[w]), isWinner ? "winner" : "start",
                              std::to_string(figures.numCompared), formatFigure(figures.rmse),
                              formatFigure(figures.mae), formatFigure(figures.bias), formatFigure(figures.r2),
                              formatFigure(figures.meanSquaredStandardisedError)});
        }
    }
    if (errors.size() > 1)
    {
        out << '\n';
        printTable(out, errors);
    }
    for (const auto& [name, held] :
         {std::pair<const char*, const fenn::analysis::HeldOutScore&>("start", result.startHeldOut),
          {"winner", result.winnerHeldOut}})
    {
        if (!held.failure.empty())
            out << name << " fails at the held-out samples: " << held.failure << '\n';
    }
    out << "\nwinner, trial " << result.winner + 1 << " of " << result.trials.size() << ": "
        << optionsFor(result.trials[result.winner].settings) << '\n';
}

} // namespace krige
