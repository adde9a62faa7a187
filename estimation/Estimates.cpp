#include "estimation/Estimates.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "estimation/Estimator.h"
#include "estimation/SampleSet.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace fenn::estimation
{

namespace
{

using Columns = std::vector<std::vector<double>>;

std::vector<std::size_t> findFiniteRows(const Columns& targets)
{
    std::vector<std::size_t> rows;
    for (std::size_t t = 0; t < targets.front().size(); ++t)
    {
        if (std::all_of(targets.begin(), targets.end(),
                        [t](const std::vector<double>& column) { return std::isfinite(column[t]); }))
            rows.push_back(t);
    }
    return rows;
}

Targets targetsIn(const Columns& columns)
{
    Targets targets;
    targets.count = columns.front().size();
    for (const std::vector<double>& column : columns)
        targets.coords.push_back(column.data());
    return targets;
}

void estimateFinite(const Estimator& estimator, const Targets& request, const WantedBeside& wanted,
                    Estimates& estimates)
{
    estimates.values.resize(static_cast<std::size_t>(estimator.getParts().getDataBlock().getNumOutputVars()));
    estimates.variances.resize(wanted.variances ? request.count : 0);
    estimates.driftProducts.resize(wanted.driftProducts ? request.count : 0);
    Results results;
    for (std::vector<double>& column : estimates.values)
    {
        column.resize(request.count);
        results.estimates.push_back(column.data());
    }
    results.variances = wanted.variances ? estimates.variances.data() : nullptr;
    results.driftProducts = wanted.driftProducts ? estimates.driftProducts.data() : nullptr;
    if (request.count > 0)
        estimator.estimate(request, results);
}

/// Spreads the entries of a column over the given rows of a longer one; the other rows become NaN.
void spread(std::vector<double>& column, const std::vector<std::size_t>& rows, std::size_t numRows)
{
    std::vector<double> all(numRows, std::numeric_limits<double>::quiet_NaN());
    for (std::size_t i = 0; i < rows.size(); ++i)
        all[rows[i]] = column[i];
    column.swap(all);
}

} // namespace

std::size_t estimateAt(const Estimator& estimator, const Columns& targets, const WantedBeside& wanted,
                       Estimates& estimates)
{
    const std::size_t numTargets = targets.front().size();
    const std::vector<std::size_t> finiteRows = findFiniteRows(targets);
    if (finiteRows.size() == numTargets)
    {
        estimateFinite(estimator, targetsIn(targets), wanted, estimates);
        return 0;
    }

    Columns finite(targets.size());
    for (std::size_t v = 0; v < targets.size(); ++v)
    {
        for (const std::size_t t : finiteRows)
            finite[v].push_back(targets[v][t]);
    }
    estimateFinite(estimator, targetsIn(finite), wanted, estimates);
    for (std::vector<double>& column : estimates.values)
        spread(column, finiteRows, numTargets);
    if (wanted.variances)
        spread(estimates.variances, finiteRows, numTargets);
    if (wanted.driftProducts)
        spread(estimates.driftProducts, finiteRows, numTargets);
    return numTargets - finiteRows.size();
}

Estimates estimateAt(const Estimator& estimator, const SampleSet& targets)
{
    Targets request;
    request.count = targets.getNumSamples();
    for (std::size_t v = 0; v < targets.getNumInputVars(); ++v)
        request.coords.push_back(targets.getInput(v).data());
    Estimates estimates;
    estimateFinite(estimator, request, {true, true}, estimates);
    return estimates;
}

} // namespace fenn::estimation
