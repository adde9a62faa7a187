#include "host/reports/VariogramReport.h"

#include <cmath>

#include "host/reports/TuningReport.h"
#include "host/text/NumberText.h"
#include "host/text/TextTable.h"

namespace krige
{

namespace
{

std::string lagText(double normalisedLag, const LagUnit& unit)
{
    return formatFigure(normalisedLag * unit.perNormalised) + " " + unit.name;
}

} // namespace

std::string describePairs(const fenn::analysis::BinnedSemivariogram& table,
                          const fenn::analysis::BinningOptions& options, const LagUnit& unit)
{
    std::size_t numPairs = 0;
    for (const fenn::analysis::LagBin& bin : table.bins)
        numPairs += bin.numPairs;
    std::string text = "pairs: " + countOf(numPairs, "pair") + " of " + countOf(table.numPointsUsed, "point") +
                       ", up to a lag of " + lagText(options.maxLag, unit);
    if (options.direction)
        text += ", in the direction of " + formatNumber(*options.direction) + " degrees, within " +
                formatNumber(options.tolerance);
    text += '\n';
    if (numPairs == 0)
        text += std::string("hint: no pair is so near; raise --max-lag") +
                (options.direction ? " or --tolerance" : "") + '\n';
    if (table.numPointsUsed < table.numPoints)
        text += "drawn: " + std::to_string(table.numPointsUsed) + " of " + countOf(table.numPoints, "point") +
                ", always the same, for all would make too many pairs\n";
    return text;
}

std::string describeFit(const fenn::analysis::SphericalFit& fit, const Settings& settings,
                        const fenn::analysis::BinningOptions& options, const LagUnit& unit)
{
    const bool isAllNugget = fit.nuggetFraction >= 1.0;
    std::string text = "fit: sill " + formatFigure(fit.sill) + ", nugget " +
                       formatFigure(fit.nuggetFraction * fit.sill) + " (" + formatFigure(fit.nuggetFraction) +
                       " of the sill), range " + lagText(fit.range, unit) + "; relative deviation of the bins " +
                       formatFigure(std::sqrt(fit.meanSquaredDeviation)) + "\nfitted: " + optionsFor(settings) +
                       " --sill " + formatNumber(fit.sill) + '\n';
    if (!fit.hasConverged)
        text += "hint: the fit did not settle; look at it with --plot\n";
    if (isAllNugget)
        text += "hint: the semivariogram does not rise: all is nugget, and the range means nothing\n";
    else if (fit.isRangeAtUpperBound)
        text += "hint: the semivariogram still rises at the largest lag: no sill is in sight; there may be a trend "
                "(--drift 1), or raise --max-lag\n";
    if (settings.driftOrder > 0)
        text += "hint: the semivariogram is that of the values as they are, a trend among them; --drift " +
                std::to_string(settings.driftOrder) + " takes the trend out, so that less sill and range are left\n";
    if (options.direction)
        text += "hint: the fit is that of one direction, the settings hold in all\n";
    return text;
}

std::string nameWithDirection(const std::string& outputName, const fenn::analysis::BinningOptions& options)
{
    if (!options.direction)
        return outputName;
    return outputName + " in direction " + formatNumber(*options.direction) + " +- " + formatNumber(options.tolerance);
}

} // namespace krige
