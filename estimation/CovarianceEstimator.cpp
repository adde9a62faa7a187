#include "estimation/CovarianceEstimator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <sstream>
#include <utility>

#include "estimation/CovarianceSystem.h"
#include "estimation/DualSolution.h"
#include "estimation/ParallelRanges.h"
#include "estimation/SpatialOrder.h"
#include "estimation/StripStore.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/kernels/CovarianceKernels.h"
#include "surrogatemodel_kriging/kernels/SolveKernels.h"

namespace fenn::estimation
{

namespace
{

using kernels::stripWidth;

// Most targets that a thread takes at a time. Estimates alone: so many that eight neighbours among them lie close
// together. With variances or drift products each holds a column of the right-hand sides: the more, the less often the
// factor is read from memory.
constexpr std::size_t targetsPerRange = 4096;
constexpr std::size_t columnsPerRange = 128;

// Multiplications below which a second thread costs more to start than it takes over.
constexpr double minSharedWork = 2e6;

// Below this part of the diagonal of the samples' box a range leaves boxes of points to skip, if eight targets that are
// asked for together are neighbours.
constexpr double shortRange = 0.5;

std::string toText(double number)
{
    std::ostringstream text;
    text.precision(2);
    text << number;
    return text.str();
}

} // namespace

/// Answers some targets of a request, on one thread.
class CovarianceEstimator::Request
{
public:
    Request(const CovarianceEstimator& estimator_, const Targets& targets_, const Results& results_)
        : estimator(estimator_),
          system(*estimator_.system),
          solution(*estimator_.solution),
          targets(targets_),
          results(results_),
          numDriftTerms(system.getNumDriftTerms()),
          lanes(stripWidth * targets_.coords.size()),
          scratch(lanes.size()),
          drift(stripWidth * numDriftTerms),
          sums(2 * stripWidth * results_.estimates.size())
    {
    }

    /// In the order of places: an estimate depends on its target alone.
    void estimate(std::size_t first, std::size_t count)
    {
        places.resize(count);
        std::iota(places.begin(), places.end(), first);
        if (estimator.hasShortRange && count > stripWidth)
            orderPlaces(first, count);
        for (std::size_t done = 0; done < count; done += stripWidth)
        {
            const std::size_t numLanes = std::min(stripWidth, count - done);
            gather(done, numLanes);
            kernels::sumCovariances(system.getModel(), system.getBoxedPoints(), lanes.data(), solution.getWeights(),
                                    sums.data());
            system.writeDriftTerms(lanes.data(), drift.data(), scratch.data());
            write(done, numLanes, drift.data());
        }
    }

    /// With variances and drift products, as far as they are wanted.
    void estimateBySolving(std::size_t first, std::size_t count)
    {
        places.resize(count);
        std::iota(places.begin(), places.end(), first);
        const std::size_t numStrips = (count + stripWidth - 1) / stripWidth;
        const StripStore store(system.getNumRows(), numStrips);
        const StripStore driftTerms(numDriftTerms, results.driftProducts != nullptr ? numStrips : 0);
        for (std::size_t done = 0; done < count; done += stripWidth)
        {
            const std::size_t numLanes = std::min(stripWidth, count - done);
            double* strip = store.getStrip(done / stripWidth);
            gather(done, numLanes);
            system.writeRightHandSides(lanes.data(), strip, scratch.data());
            kernels::sumLines(strip, system.getNumPoints(), solution.getWeights(), sums.data());
            write(done, numLanes, strip + stripWidth * system.getFirstDriftRow());
            if (results.driftProducts != nullptr)
                std::copy_n(strip + stripWidth * system.getFirstDriftRow(), stripWidth * numDriftTerms,
                            driftTerms.getStrip(done / stripWidth));
        }
        system.substitute(store.getGroup());
        for (std::size_t done = 0; done < count; done += stripWidth)
        {
            const std::size_t numLanes = std::min(stripWidth, count - done);
            double* strip = store.getStrip(done / stripWidth);
            if (results.variances != nullptr)
                writeVariances(done, numLanes, strip);
            if (results.driftProducts != nullptr)
                writeDriftProducts(done, numLanes, strip, driftTerms.getStrip(done / stripWidth));
        }
    }

private:
    void orderPlaces(std::size_t first, std::size_t count)
    {
        std::vector<std::vector<double>> coordinates;
        for (const double* column : targets.coords)
            coordinates.emplace_back(column + first, column + first + count);
        places = orderInSpace(coordinates, system.getScales(), stripWidth);
        for (std::size_t& place : places)
            place += first;
    }

    /// Lanes without a target repeat the last one: what is computed there is thrown away.
    void gather(std::size_t begin, std::size_t numLanes)
    {
        for (std::size_t v = 0; v < targets.coords.size(); ++v)
        {
            for (std::size_t t = 0; t < stripWidth; ++t)
                lanes[stripWidth * v + t] = targets.coords[v][places[begin + std::min(t, numLanes - 1)]];
        }
    }

    /// (f(x_0)^T b + sum of w_j c_j) + reference, the products of drift terms added in ascending order from +0.0 on.
    void write(std::size_t begin, std::size_t numLanes, const double* driftTerms)
    {
        for (std::size_t o = 0; o < results.estimates.size(); ++o)
        {
            const double* coefficients = solution.getCoefficients(o);
            double ofDrift[stripWidth] = {};
            for (std::size_t k = 0; k < numDriftTerms; ++k)
            {
                for (std::size_t t = 0; t < stripWidth; ++t)
                    ofDrift[t] += driftTerms[stripWidth * k + t] * coefficients[k];
            }
            for (std::size_t t = 0; t < numLanes; ++t)
                results.estimates[o][places[begin + t]] =
                    (ofDrift[t] + sums[stripWidth * o + t]) + solution.getReference(o);
        }
        for (std::size_t t = 0; numDriftTerms > 1 && t < numLanes; ++t)
        {
            if (!isInBox(t))
                estimator.raiseBound(calcBoundOfLane(t, driftTerms));
        }
    }

    bool isInBox(std::size_t t) const
    {
        for (std::size_t v = 0; v < targets.coords.size(); ++v)
        {
            const double coordinate = lanes[stripWidth * v + t];
            if (!(coordinate >= estimator.low[v] && coordinate <= estimator.high[v]))
                return false;
        }
        return true;
    }

    double calcBoundOfLane(std::size_t t, const double* driftTerms) const
    {
        std::vector<double> terms(numDriftTerms);
        for (std::size_t k = 0; k < numDriftTerms; ++k)
            terms[k] = driftTerms[stripWidth * k + t];
        const double targetBound = solution.calcBound(terms.data());
        return std::isnan(targetBound) ? std::numeric_limits<double>::infinity() : targetBound;
    }

    /// 1 - |L^-1 c|^2 + |R^-1 (f - F^T C^-1 c)|^2.
    void writeVariances(std::size_t begin, std::size_t numLanes, double* strip)
    {
        double ofPoints[stripWidth];
        double ofDrift[stripWidth];
        const kernels::StripGroup points{strip, 0, 1};
        const kernels::StripGroup driftRows{strip + stripWidth * system.getFirstDriftRow(), 0, 1};
        kernels::sumProducts(points, points, system.getNumPoints(), ofPoints);
        kernels::sumProducts(driftRows, driftRows, numDriftTerms, ofDrift);
        for (std::size_t t = 0; t < numLanes; ++t)
            results.variances[places[begin + t]] = (1.0 - ofPoints[t]) + ofDrift[t];
    }

    /// mu^T f. The multipliers of the covariance form are -mu: subtracting its equations from the sill turns C lambda +
    /// F nu = c into Gamma lambda - F nu = gamma. Uses up the drift rows of the strip.
    void writeDriftProducts(std::size_t begin, std::size_t numLanes, double* strip, double* driftTerms)
    {
        double* const multipliers = strip + stripWidth * system.getFirstDriftRow();
        system.substituteDriftBack(multipliers);
        double products[stripWidth];
        kernels::sumProducts({multipliers, 0, 1}, {driftTerms, 0, 1}, numDriftTerms, products);
        for (std::size_t t = 0; t < numLanes; ++t)
            results.driftProducts[places[begin + t]] = products[t];
    }

    const CovarianceEstimator& estimator;
    const CovarianceSystem& system;
    const DualSolution& solution;
    const Targets& targets;
    const Results& results;
    const std::size_t numDriftTerms;
    std::vector<std::size_t> places; // of the targets that are asked for, in the order in which they are answered
    std::vector<double> lanes;
    std::vector<double> scratch;
    std::vector<double> drift;
    std::vector<double> sums;
};

CovarianceEstimator::CovarianceEstimator(const std::shared_ptr<const ModelParts>& parts_, const ModelSettings& settings,
                                         int numThreads)
    : Estimator(parts_),
      threads(std::make_unique<ParallelRanges>(numThreads)),
      system(std::make_unique<CovarianceSystem>(*parts_, settings.driftOrder)),
      hasShortRange(settings.rangeFraction < shortRange)
{
    for (std::size_t v = 0; v < parts_->getNormalizers().size(); ++v)
    {
        const double min = parts_->getMinValues()[v];
        const double max = parts_->getMaxValues()[v];
        low.push_back(min - 0.5 * (max - min));
        high.push_back(max + 0.5 * (max - min));
    }
}

CovarianceEstimator::~CovarianceEstimator() = default;

std::unique_ptr<CovarianceEstimator>
CovarianceEstimator::makeWhereProven(const std::shared_ptr<const ModelParts>& parts, const ModelSettings& settings,
                                     int numThreads, std::string& reason)
{
    std::unique_ptr<CovarianceEstimator> estimator(new CovarianceEstimator(parts, settings, numThreads));
    const CovarianceSystem& system = *estimator->system;
    reason = system.findObstacle();
    if (!reason.empty())
        return nullptr;
    if (!estimator->system->factorise(*estimator->threads))
    {
        reason = "the covariance form does not apply: its matrix is not positive definite";
        return nullptr;
    }

    // Monomials are largest at a corner of the box, all of them at the same one.
    const std::size_t numDriftTerms = system.getNumDriftTerms();
    std::vector<double> corners(stripWidth * estimator->low.size());
    std::vector<double> scratch(corners.size());
    std::vector<double> terms(stripWidth * numDriftTerms);
    for (std::size_t v = 0; v < estimator->low.size(); ++v)
    {
        for (std::size_t t = 0; t < stripWidth; ++t)
            corners[stripWidth * v + t] = t == 0 ? estimator->low[v] : estimator->high[v];
    }
    system.writeDriftTerms(corners.data(), terms.data(), scratch.data());
    std::vector<double> magnitudes(numDriftTerms);
    for (std::size_t k = 0; k < numDriftTerms; ++k)
        magnitudes[k] = std::max(std::fabs(terms[stripWidth * k]), std::fabs(terms[stripWidth * k + 1]));

    estimator->solution = std::make_unique<DualSolution>(system, *parts, *estimator->threads, magnitudes, largestBound);
    estimator->boundInBox = estimator->solution->calcBound(magnitudes.data());
    estimator->bound = estimator->boundInBox;
    if (estimator->boundInBox <= largestBound)
        return estimator;
    reason = "the covariance form could be off by more than " + toText(largestBound) + " standard deviations";
    if (std::isfinite(estimator->boundInBox))
        reason += " (" + toText(estimator->boundInBox) + ")";
    return nullptr;
}

void CovarianceEstimator::estimate(const Targets& targets, const Results& results) const
{
    if (targets.count == 0)
        return;
    const bool solves = results.variances != nullptr || results.driftProducts != nullptr;
    const auto numPoints = static_cast<double>(system->getNumPoints());
    const double workPerTarget = solves ? numPoints * (10.0 + 0.5 * numPoints) : numPoints * 10.0;
    const std::size_t numRanges =
        static_cast<double>(targets.count) * workPerTarget < minSharedWork ? 1 : threads->getNumThreads();
    const std::size_t share = (targets.count + numRanges - 1) / numRanges;
    threads->run(targets.count, std::min(solves ? columnsPerRange : targetsPerRange, kernels::roundUpToStrip(share)),
                 [&](std::size_t, std::size_t first, std::size_t end)
                 {
                     Request request(*this, targets, results);
                     if (solves)
                         request.estimateBySolving(first, end - first);
                     else
                         request.estimate(first, end - first);
                 });
}

void CovarianceEstimator::raiseBound(double targetBound) const
{
    double so_far = bound.load(std::memory_order_relaxed);
    while (!(targetBound <= so_far) && !bound.compare_exchange_weak(so_far, targetBound, std::memory_order_relaxed))
    {
    }
}

EngineReport CovarianceEstimator::getReport() const
{
    EngineReport report;
    report.engine = "covariance form";
    report.isExact = false;
    report.bound = bound;
    report.sentence = "covariance form: one factorisation over all " + std::to_string(system->getNumPoints()) +
                      " points; estimates differ from the exact ones by at most " + toText(report.bound) +
                      " standard deviations of the samples";
    return report;
}

std::vector<std::vector<double>> CovarianceEstimator::calcDualWeights() const
{
    const std::size_t numPoints = system->getNumPoints();
    std::vector<std::vector<double>> weights(solution->getWeights().numOutputs, std::vector<double>(numPoints));
    for (std::size_t w = 0; w < weights.size(); ++w)
    {
        for (std::size_t i = 0; i < numPoints; ++i)
            weights[w][system->getPositions()[i]] = solution->getWeights().values[w * numPoints + i];
    }
    return weights;
}

double CovarianceEstimator::findReciprocalCondition() const
{
    return 1.0 / (system->calcNorm(solution->getDriftScales()) * solution->getInverseNorm());
}

bool CovarianceEstimator::isGlobal() const
{
    return true;
}

} // namespace fenn::estimation
