#include "host/model/VariogramModel.h"

#include <stdexcept>

#include "analysis/ModelPoints.h"
#include "analysis/Sill.h"
#include "host/text/HostErrors.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/ModelParts.h"

namespace krige
{

namespace
{

fenn::analysis::Sill estimateSill(const fenn::estimation::SampleSet& samples, const fenn::ModelParts& parts,
                                  const Settings& settings)
{
    constexpr std::size_t mostInOneSystem = 2000; // about a second
    constexpr int numNearest = 32;
    fenn::estimation::ModelSettings model = settings;
    const std::size_t numPoints = parts.getPoints().size();
    if (numPoints > mostInOneSystem && usesAllPoints(model, numPoints))
        model.numNearestPoints = numNearest;
    try
    {
        return fenn::analysis::estimateSills(samples, model).front();
    }
    catch (const SurrogateModelInterface::Error&)
    {
        const double variance = fenn::analysis::varianceOfPoints(parts, 0);
        return {variance, variance, fenn::analysis::SillMethod::SampleVariance, numPoints};
    }
}

} // namespace

OutputSill sillOfSettings(const fenn::estimation::SampleSet& samples, const fenn::ModelParts& parts,
                          const Settings& settings)
{
    fenn::analysis::Sill sill;
    sill.sampleVariance = fenn::analysis::varianceOfPoints(parts, 0);
    if (chooseSill(settings.sills, 0).rule == SillChoice::Rule::Automatic)
        sill = estimateSill(samples, parts, settings);
    return applyChoices(settings.sills, {sill}).front();
}

fenn::analysis::SphericalFit fitToBins(const fenn::ModelParts& parts, const fenn::analysis::BinningOptions& options,
                                       const std::string& path)
{
    try
    {
        return fenn::analysis::fitSpherical(fenn::analysis::binSemivariogram(parts, options).bins);
    }
    catch (const std::invalid_argument& error)
    {
        throw InputError(path + ": " + error.what() + "; add samples, or raise --lags or --max-lag");
    }
}

Settings withFit(const Settings& settings, const fenn::ModelParts& parts, const fenn::analysis::SphericalFit& fit)
{
    Settings fitted = settings;
    fitted.rangeFraction = fenn::analysis::toRangeFraction(parts, fit.range);
    fitted.rangeInInputUnits.reset();
    fitted.nugget = fit.nuggetFraction;
    fitted.sills = {{SillChoice::Rule::Given, fit.sill}};
    return fitted;
}

} // namespace krige
