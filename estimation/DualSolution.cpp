#include "estimation/DualSolution.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "estimation/InverseNorm.h"
#include "estimation/ParallelRanges.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "surrogatemodel_kriging/kernels/ErrorFree.h"

namespace fenn::estimation
{

namespace
{

using kernels::stripWidth;

constexpr double unitRoundoff = 0x1p-53;
constexpr double largestRelativeError = 0.5;
constexpr int maxCorrections = 3;

// Below this a second thread costs more to start than it takes over.
constexpr std::size_t minSharedPoints = 256;
constexpr std::size_t stripsPerRange = 4;

// Columns for the norm of the inverse: four at least, and what a strip has room for beside the outputs.
constexpr std::size_t minNormColumns = 4;

/// Subtracts a b from a doubled sum.
void subtractProduct(double& high, double& low, double a, double b)
{
    const kernels::WithError product = kernels::multiplyWithError(a, b);
    const kernels::WithError difference = kernels::subtractWithError(high, product.value);
    high = difference.value;
    low += difference.error - product.error;
}

} // namespace

/// The solutions while they are found. Column o of the strips is output o's.
class DualSolution::Refinement
{
public:
    Refinement(const CovarianceSystem& system_, ParallelRanges& threads_, std::size_t numOutputs_)
        : system(system_),
          threads(threads_),
          numOutputs(numOutputs_),
          numPoints(system_.getNumPoints()),
          numRows(system_.getNumRows()),
          numStrips((numOutputs_ + minNormColumns + stripWidth - 1) / stripWidth),
          numNormColumns(std::min(stripWidth, numStrips * stripWidth - numOutputs_)),
          store(numRows, numStrips),
          high(numOutputs_ * numPoints),
          low(numOutputs_ * numPoints),
          solution(numOutputs_ * numRows),
          residual(numOutputs_ * numRows)
    {
    }

    /// The centred outputs, as doubled numbers.
    void setObservation(std::size_t output, std::size_t point, const kernels::WithError& value)
    {
        high[output * numPoints + point] = value.value;
        low[output * numPoints + point] = value.error;
    }

    /// The first solution; of norm, one solve.
    void solve(InverseNorm& norm)
    {
        for (std::size_t o = 0; o < numOutputs; ++o)
            std::copy_n(high.data() + o * numPoints, numPoints, residual.data() + o * numRows);
        correct(&norm);
    }

    /// One correction from the residual; of norm, one solve, unless it is null.
    void refine(InverseNorm* norm)
    {
        calcResidual();
        correct(norm);
    }

    /// The last solve of norm by itself.
    void solveNorm(InverseNorm& norm)
    {
        norm.writeColumns(store, 0);
        for (std::size_t c = numNormColumns; c < stripWidth; ++c)
            clearColumn(c);
        system.solve(store.getGroup(1));
        norm.readSolutions(store, 0);
    }

    std::size_t getNumNormColumns() const
    {
        return numNormColumns;
    }

    const double* getSolution(std::size_t output) const
    {
        return solution.data() + output * numRows;
    }

    /// What the last solve added to it.
    const double* getCorrection(std::size_t output) const
    {
        return residual.data() + output * numRows;
    }

private:
    /// Solves for the residuals and adds what comes out to the solutions.
    void correct(InverseNorm* norm)
    {
        for (std::size_t o = 0; o < numOutputs; ++o)
        {
            for (std::size_t i = 0; i < numRows; ++i)
                store.getColumn(o)[stripWidth * i] = residual[o * numRows + i];
        }
        for (std::size_t c = numOutputs; c < numStrips * stripWidth; ++c)
            clearColumn(c);
        if (norm != nullptr)
            norm->writeColumns(store, numOutputs);
        system.solve(store.getGroup());
        for (std::size_t o = 0; o < numOutputs; ++o)
        {
            for (std::size_t i = 0; i < numRows; ++i)
            {
                residual[o * numRows + i] = store.getColumn(o)[stripWidth * i];
                solution[o * numRows + i] += residual[o * numRows + i];
            }
        }
        if (norm != nullptr)
            norm->readSolutions(store, numOutputs);
    }

    void clearColumn(std::size_t c)
    {
        for (std::size_t i = 0; i < numRows; ++i)
            store.getColumn(c)[stripWidth * i] = 0.0;
    }

    /// residual = (z, 0) - K (w, b), as if in twice the precision and rounded at last.
    void calcResidual()
    {
        const std::size_t numPointStrips = (numPoints + stripWidth - 1) / stripWidth;
        threads.run(numPointStrips, numPoints < minSharedPoints ? numPointStrips : stripsPerRange,
                    [this](std::size_t, std::size_t first, std::size_t end)
                    {
                        for (std::size_t strip = first; strip < end; ++strip)
                            calcResidualOfPoints(stripWidth * strip);
                    });
        calcResidualOfDrift();
    }

    void calcResidualOfPoints(std::size_t first)
    {
        const std::size_t count = std::min(stripWidth, numPoints - first);
        const std::size_t numTerms = system.getNumDriftTerms();
        const std::size_t numInputVars = system.getModel().numInputVars;
        std::vector<double> targets(stripWidth * numInputVars);
        std::vector<double> scratch(targets.size());
        std::vector<double> drift(stripWidth * numTerms);
        std::vector<double> sums(2 * stripWidth * numOutputs);
        double* highs = sums.data();
        double* lows = sums.data() + stripWidth * numOutputs;
        for (std::size_t o = 0; o < numOutputs; ++o)
        {
            std::copy_n(high.data() + o * numPoints + first, count, highs + stripWidth * o);
            std::copy_n(low.data() + o * numPoints + first, count, lows + stripWidth * o);
        }
        system.gatherPoints(first, targets.data());
        kernels::subtractCovariancesTwice(system.getModel(), system.getBoxedPoints(), first, targets.data(),
                                          {solution.data(), numRows, numOutputs}, {highs, lows});
        system.writeDriftTerms(targets.data(), drift.data(), scratch.data());
        for (std::size_t o = 0; o < numOutputs; ++o)
        {
            const double* coefficients_ = getSolution(o) + system.getFirstDriftRow();
            for (std::size_t t = 0; t < count; ++t)
            {
                double& sum = highs[stripWidth * o + t];
                double& errors = lows[stripWidth * o + t];
                for (std::size_t k = 0; k < numTerms; ++k)
                    subtractProduct(sum, errors, drift[stripWidth * k + t], coefficients_[k]);
                residual[o * numRows + first + t] = sum + errors;
            }
        }
    }

    void calcResidualOfDrift()
    {
        const std::size_t numTerms = system.getNumDriftTerms();
        std::vector<double> targets(stripWidth * system.getModel().numInputVars);
        std::vector<double> scratch(targets.size());
        std::vector<double> drift(stripWidth * numTerms);
        std::vector<double> highs(numOutputs * numTerms);
        std::vector<double> lows(numOutputs * numTerms);
        for (std::size_t first = 0; first < numPoints; first += stripWidth)
        {
            system.gatherPoints(first, targets.data());
            system.writeDriftTerms(targets.data(), drift.data(), scratch.data());
            for (std::size_t t = 0; t < std::min(stripWidth, numPoints - first); ++t)
            {
                for (std::size_t sum = 0; sum < highs.size(); ++sum)
                    subtractProduct(highs[sum], lows[sum], drift[stripWidth * (sum % numTerms) + t],
                                    getSolution(sum / numTerms)[first + t]);
            }
        }
        for (std::size_t sum = 0; sum < highs.size(); ++sum)
            residual[sum / numTerms * numRows + system.getFirstDriftRow() + sum % numTerms] = highs[sum] + lows[sum];
    }

    const CovarianceSystem& system;
    ParallelRanges& threads;
    const std::size_t numOutputs;
    const std::size_t numPoints;
    const std::size_t numRows;
    const std::size_t numStrips;
    const std::size_t numNormColumns;
    StripStore store;
    std::vector<double> high; // output by output
    std::vector<double> low;
    std::vector<double> solution; // output by output, all rows
    std::vector<double> residual; // likewise; after a solve the correction
};

DualSolution::DualSolution(const CovarianceSystem& system, const ModelParts& parts, ParallelRanges& threads,
                           const std::vector<double>& driftMagnitudes, double tolerance)
    : numPoints(system.getNumPoints()), numDriftTerms(system.getNumDriftTerms())
{
    const SurrogateModelDataBlock& block = parts.getDataBlock();
    outputs.resize(static_cast<std::size_t>(block.getNumOutputVars()));
    Refinement refinement(system, threads, outputs.size());
    std::vector<double> values(numPoints);
    for (std::size_t o = 0; o < outputs.size(); ++o)
    {
        for (std::size_t i = 0; i < numPoints; ++i)
        {
            const SourcePointRef& point = system.getPoints()[i];
            values[i] = block.getOutputValueArraysForBlock(point.first)[o][point.second];
        }
        const auto limits = std::minmax_element(values.begin(), values.end());
        const double halfRange = 0.5 * *limits.second - 0.5 * *limits.first;
        Output& output = outputs[o];
        output.reference = *limits.first + halfRange; // exact for an output that is the same everywhere
        output.standardDeviation = std::sqrt(block.getOutputVarSampleVariance(static_cast<int>(o)));
        for (std::size_t i = 0; i < numPoints; ++i)
            refinement.setObservation(o, i, kernels::subtractWithError(values[i], output.reference));
    }

    for (std::size_t k = 0; k < numDriftTerms; ++k)
        driftScales.push_back(system.calcRowNorm(system.getFirstDriftRow() + k));
    InverseNorm norm(system.getRowScales(driftScales), refinement.getNumNormColumns());

    const auto take = [&]
    {
        weights.clear();
        coefficients.clear();
        for (std::size_t o = 0; o < outputs.size(); ++o)
        {
            Output& output = outputs[o];
            const double* solution = refinement.getSolution(o);
            const double* correction = refinement.getCorrection(o);
            output.sumWeights = output.solutionNorm = output.correctionNorm = 0.0;
            for (std::size_t i = 0; i < numPoints; ++i)
            {
                weights.push_back(solution[i]);
                output.sumWeights += std::fabs(solution[i]);
                output.correctionNorm += std::fabs(correction[i]);
            }
            output.solutionNorm = output.sumWeights;
            for (std::size_t k = 0; k < numDriftTerms; ++k)
            {
                const std::size_t row = system.getFirstDriftRow() + k;
                coefficients.push_back(solution[row]);
                output.solutionNorm += driftScales[k] * std::fabs(solution[row]);
                output.correctionNorm += driftScales[k] * std::fabs(correction[row]);
            }
        }
        const bool isProven = calcBound(driftMagnitudes.data()) <= tolerance;
        return isProven;
    };

    refinement.solve(norm);
    refinement.refine(&norm);
    refinement.solveNorm(norm);
    inverseNorm = norm.getEstimate();
    const auto numUsedRows = static_cast<double>(numPoints + numDriftTerms);
    relativeError = 4.0 * numUsedRows * (numUsedRows + 2.0) * unitRoundoff * inverseNorm;
    for (int numCorrections = 1; !take() && numCorrections < maxCorrections; ++numCorrections)
        refinement.refine(nullptr);
}

double DualSolution::getInverseNorm() const
{
    return inverseNorm;
}

const std::vector<double>& DualSolution::getDriftScales() const
{
    return driftScales;
}

kernels::PointWeights DualSolution::getWeights() const
{
    return {weights.data(), numPoints, outputs.size()};
}

const double* DualSolution::getCoefficients(std::size_t output) const
{
    return coefficients.data() + output * numDriftTerms;
}

double DualSolution::getReference(std::size_t output) const
{
    return outputs[output].reference;
}

double DualSolution::calcBound(const double* driftTerms) const
{
    double worst = 0.0;
    for (std::size_t o = 0; o < outputs.size(); ++o)
    {
        const double bound = calcBound(o, driftTerms);
        if (!(bound <= worst)) // a NaN counts, and stays
            worst = std::isnan(worst) ? worst : bound;
    }
    return worst;
}

double DualSolution::calcBound(std::size_t output, const double* driftTerms) const
{
    const Output& own = outputs[output];
    if (own.solutionNorm == 0.0 && own.correctionNorm == 0.0)
        return 0.0; // an output that is the same everywhere
    if (!(relativeError <= largestRelativeError) || !std::isfinite(own.standardDeviation))
        return std::numeric_limits<double>::infinity();
    double amplification = 1.0;
    double sumDrift = 0.0;
    for (std::size_t k = 0; k < numDriftTerms; ++k)
    {
        const double magnitude = std::fabs(driftTerms[k]);
        amplification = std::max(amplification, magnitude / driftScales[k]);
        sumDrift += magnitude * std::fabs(getCoefficients(output)[k]);
    }
    const auto numUsedRows = static_cast<double>(numPoints + numDriftTerms);
    const double ofSolution =
        amplification * relativeError * (own.correctionNorm + numUsedRows * unitRoundoff * own.solutionNorm);
    const double ofSums = unitRoundoff * (8.0 * own.sumWeights + (static_cast<double>(numDriftTerms) + 4.0) * sumDrift);
    // What rounds here is far below a hundredth.
    return 1.01 * (ofSolution + ofSums) / own.standardDeviation;
}

} // namespace fenn::estimation
