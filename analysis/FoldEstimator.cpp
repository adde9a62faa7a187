#include "analysis/FoldEstimator.h"

#include <algorithm>
#include <utility>

#include "analysis/ModelPoints.h"
#include "analysis/Sill.h"
#include "estimation/DriftColumns.h"
#include "estimation/SystemSize.h"
#include "estimation/makeModelParts.h"
#include "estimation/makeSystemInverse.h"
#include "surrogatemodel_kriging/Matrix.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::analysis
{

namespace
{

/// Minus the diagonal of the factorised block's inverse.
std::vector<double> calcVariances(const Matrix& block)
{
    const auto count = static_cast<std::size_t>(block.getDimension());
    std::vector<double> variances(count);
    std::vector<double> column(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        std::fill(column.begin(), column.end(), 0.0);
        column[i] = 1.0;
        block.luSolve(column.data());
        variances[i] = -column[i];
    }
    return variances;
}

/// Per point of the group whose block, which is symmetric, has been factorised. driftRows and driftColumns: of K^-1 and
/// of K, an entry per point each.
std::vector<double> calcDriftProducts(const Matrix& block, const std::vector<std::size_t>& group,
                                      const std::vector<std::vector<double>>& driftRows,
                                      const std::vector<std::vector<double>>& driftColumns)
{
    std::vector<double> products(group.size());
    std::vector<double> multipliers(group.size());
    for (std::size_t k = 0; k < driftRows.size(); ++k)
    {
        for (std::size_t i = 0; i < group.size(); ++i)
            multipliers[i] = driftRows[k][group[i]];
        block.luSolve(multipliers.data());
        for (std::size_t i = 0; i < group.size(); ++i)
            products[i] -= multipliers[i] * driftColumns[k][group[i]];
    }
    return products;
}

} // namespace

FoldEstimator::FoldEstimator(const SampleSet& samples_, const ModelSettings& settings_, const EstimatorOptions& options)
    : samples(samples_),
      driftOrder(settings_.driftOrder),
      parts(estimation::makeModelParts(samples, settings_)),
      members(membersOfPoints(*parts)),
      truths(outputsOfPoints(*parts)),
      inverse(estimation::makeSystemInverse(*parts, driftOrder, options))
{
    for (std::size_t w = 0; w < truths.size(); ++w)
        solutions.push_back(inverse->solve(centred(truths[w], parts->getDataBlock(), w)));
}

FoldEstimator::~FoldEstimator() = default;

bool FoldEstimator::isWellConditioned() const
{
    return inverse->isWellConditioned();
}

std::vector<double> FoldEstimator::calcSills() const
{
    std::vector<std::vector<double>> dualWeights; // of the covariance form, which has the other sign
    if (isWellConditioned())
    {
        dualWeights = solutions;
        for (std::vector<double>& weights : dualWeights)
            std::transform(weights.begin(), weights.end(), weights.begin(), [](double weight) { return -weight; });
    }
    std::vector<double> sills;
    for (const Sill& sill : restrictedSills(*parts, dualWeights, driftOrder))
        sills.push_back(sill.value);
    return sills;
}

std::vector<std::vector<std::size_t>> FoldEstimator::pointsOfFolds(const std::vector<std::size_t>& folds,
                                                                   std::size_t numFolds) const
{
    std::vector<std::vector<std::size_t>> points(numFolds);
    for (std::size_t p = 0; p < members.size(); ++p)
        points[folds[members[p].front()]].push_back(p);
    std::vector<std::vector<std::size_t>> groups; // a fold whose samples were all merged into others' has none
    for (std::vector<std::size_t>& group : points)
    {
        if (group.empty())
            continue;
        estimation::checkPointsSuffice(members.size() - group.size(), samples.getNumInputVars(), driftOrder);
        groups.push_back(std::move(group));
    }
    return groups;
}

Estimates FoldEstimator::estimate(const std::vector<std::size_t>& folds, std::size_t numFolds,
                                  const WantedBeside& wanted) const
{
    const std::vector<std::vector<std::size_t>> groups = pointsOfFolds(folds, numFolds);
    Estimates estimates;
    estimates.values.assign(truths.size(), std::vector<double>(samples.getNumSamples()));
    estimates.variances.resize(wanted.variances ? samples.getNumSamples() : 0);
    estimates.driftProducts.resize(wanted.driftProducts ? samples.getNumSamples() : 0);
    std::vector<std::vector<double>> driftColumns;
    std::vector<std::vector<double>> driftRows;
    if (wanted.driftProducts)
    {
        driftColumns = estimation::calcDriftColumns(*parts, driftOrder);
        driftRows = inverse->calcDriftRows();
    }

    inverse->calcBlocks(groups,
                        [&](std::size_t g, Matrix& block)
                        {
                            const std::vector<std::size_t>& group = groups[g];
                            const auto writeToMembers = [&](std::vector<double>& column, std::size_t i, double value)
                            {
                                for (const std::size_t sample : members[group[i]])
                                    column[sample] = value;
                            };
                            block.luDecompose();
                            std::vector<double> errors(group.size());
                            for (std::size_t w = 0; w < truths.size(); ++w)
                            {
                                for (std::size_t i = 0; i < group.size(); ++i)
                                    errors[i] = solutions[w][group[i]];
                                block.luSolve(errors.data());
                                for (std::size_t i = 0; i < group.size(); ++i)
                                    writeToMembers(estimates.values[w], i, truths[w][group[i]] - errors[i]);
                            }
                            if (wanted.variances)
                            {
                                const std::vector<double> variances = calcVariances(block);
                                for (std::size_t i = 0; i < group.size(); ++i)
                                    writeToMembers(estimates.variances, i, variances[i]);
                            }
                            if (wanted.driftProducts)
                            {
                                const std::vector<double> products =
                                    calcDriftProducts(block, group, driftRows, driftColumns);
                                for (std::size_t i = 0; i < group.size(); ++i)
                                    writeToMembers(estimates.driftProducts, i, products[i]);
                            }
                        });
    return estimates;
}

} // namespace fenn::analysis
