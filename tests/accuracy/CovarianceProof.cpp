#include "tests/accuracy/CovarianceProof.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "estimation/CovarianceEstimator.h"
#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/accuracy/HighPrecisionSystem.h"
#include "tests/support/MatrixSamples.h"

namespace fenn::test
{

namespace
{

estimation::ModelSettings toEstimation(const ModelSettings& settings)
{
    return {settings.duplicateTolerance, settings.scaleFactors, settings.driftOrder,
            settings.rangeFraction,      settings.nugget,       settings.numNearestPoints};
}

} // namespace

CovarianceProof checkProof(const HardSystem& system)
{
    const estimation::SampleSet samples(system.inputs, {system.outputs});
    const estimation::ModelSettings settings = toEstimation(system.settings);
    const auto parts = estimation::makeModelParts(samples, settings);
    const auto build = [&](std::string& refusal)
    {
        return estimation::CovarianceEstimator::makeWhereProven(parts, settings, 1, refusal);
    };
    CovarianceProof proof;
    const auto estimator = build(proof.refusal);
    if (!estimator)
        return proof;
    proof.bound = estimator->getReport().bound;

    const std::vector<SourcePointRef>& points = parts->getPoints();
    std::vector<double> scratch(system.inputs.size());
    KrigingMatrix matrix(parts->getDataBlock(), static_cast<int>(points.size()), &parts->getSemivariogram(),
                         settings.driftOrder);
    matrix.assemble(points, scratch);
    const HighPrecisionSystem exact(rowsOf(matrix));
    const double deviation = std::sqrt(parts->getDataBlock().getOutputVarSampleVariance(0));
    for (std::size_t t = 0; t < system.targets[0].size(); ++t)
    {
        std::vector<double> b(static_cast<std::size_t>(matrix.getDimension()));
        matrix.buildRightHandSide(b.data(), 0, pointAt(system.targets, t), points, scratch);
        const HighVector weights = exact.solve(toHighPrecision(b));

        std::string none;
        const auto own = build(none); // its report knows this target alone
        double estimate = 0.0;
        std::vector<const double*> target;
        for (const std::vector<double>& column : system.targets)
            target.push_back(column.data() + t);
        own->estimate({target, 1}, {{&estimate}, nullptr});

        HighPrecision error = estimate;
        for (std::size_t j = 0; j < points.size(); ++j)
        {
            HighPrecision term =
                parts->getDataBlock().getOutputValueArraysForBlock(points[j].first)[0][points[j].second];
            term *= weights[j];
            error -= term;
        }
        const double lastRounding = 0x1p-53 * std::fabs(estimate);
        const double magnitude = std::max(0.0, std::fabs(error.toDouble()) - lastRounding) / deviation;
        proof.error = std::max(proof.error, magnitude);
        proof.worstRatio = std::max(proof.worstRatio, magnitude / own->getReport().bound);
    }
    return proof;
}

} // namespace fenn::test
