#ifndef FENN_ANALYSIS_OUTPUTTRANSFORM_H
#define FENN_ANALYSIS_OUTPUTTRANSFORM_H

#include <limits>
#include <vector>

namespace fenn::analysis
{

/// Ends of an interval, or limits that values are brought into.
struct Interval
{
    double lower = -std::numeric_limits<double>::infinity();
    double upper = std::numeric_limits<double>::infinity();
};

/// estimate - factor * standardError and estimate + factor * standardError, factor from intervalFactor. NaN where one
/// of them is.
Interval predictionInterval(double estimate, double standardError, double factor);

/// A value brought into limits; NaN stays.
double clamped(double value, const Interval& limits);

// Outputs that are modelled by their natural logarithms. What is estimated of the logarithm comes back in the data's
// units in three ways: as the expectation, as the median and as an interval.

/// Throws std::invalid_argument, with the number of the sample from 0, for a value that is not above 0 and finite.
std::vector<double> toLogarithms(const std::vector<double>& values);

/// Unbiased estimate of the expectation where the logarithm is estimated as y, with the drift's coefficients, the
/// constant's among them, unknown:
///
///     exp(y + sill (V / 2 - mu^T f)),    Gamma lambda + F mu = gamma,    V = lambda^T gamma + mu^T f
///
/// For the logarithm is normal with variance sill, but y itself varies with sill lambda^T C lambda = sill (1 - V + 2
/// mu^T f): half of the difference is what exp(y) lacks.
///
/// Source: A. G. Journel and C. J. Huijbregts, Mining Geostatistics (Academic Press, 1978), section VIII.A.1; in
/// covariances, with the other sign of mu, there.
///
/// variance: V for a sill of 1. driftProduct: mu^T f of the target. NaN where the variance is not accepted
/// (estimation::acceptedVariance).
double expectationOf(double estimate, double variance, double driftProduct, double sill);

/// exp(y): half of all values lie below it. Lower than the expectation, and not unbiased.
double medianOf(double estimate);

/// Ends of an interval of the logarithm, each by itself: it holds as many values.
Interval fromLogarithms(const Interval& interval);

/// Continuous ranked probability score of a prediction by its logarithm, in the data's units: as Calibration::crps, for
/// the log-normal distribution of normal logarithms of mean m and deviation s,
///
///     y (2 Phi(w) - 1) - 2 exp(m + s^2 / 2) (Phi(w - s) + Phi(s / sqrt(2)) - 1),    w = (ln y - m) / s
///
/// and |y - exp(m)| for s = 0.
///
/// Source: S. Baran and S. Lerch, "Log-normal distribution based ensemble model output statistics models for
/// probabilistic wind-speed forecasting", Quarterly Journal of the Royal Meteorological Society 141 (2015).
double crpsOfLogarithm(double logarithmOfTruth, double estimate, double standardError);

/// How what a model of outputs, or of their logarithms, says of a target comes back in the data's units. A plain value.
struct OutputUnits
{
    bool areLogarithms = false; // the model is one of the outputs' natural logarithms
    Interval limits{};          // that estimates, medians and ends of intervals are brought into

    /// The estimate itself, or expectationOf its logarithm.
    double estimateOf(double estimate, double variance, double driftProduct, double sill) const;

    /// The estimate itself, or medianOf its logarithm.
    double medianOf(double estimate) const;

    Interval intervalOf(const Interval& interval) const;
};

bool operator==(const OutputUnits& a, const OutputUnits& b);

} // namespace fenn::analysis

#endif
