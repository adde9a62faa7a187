#ifndef FENN_ESTIMATION_STANDARDERROR_H
#define FENN_ESTIMATION_STANDARDERROR_H

namespace fenn::estimation
{

/// A Kriging variance for a sill of 1, its rounding errors taken out: from -1e-12 to 0 it is 0, as at a sample without
/// a nugget. Below, where the semivariogram is not valid for the number of inputs or the system can hardly be solved,
/// it is NaN, and NaN stays NaN.
double acceptedVariance(double variance);

/// The accepted variance where an estimate is compared with a known value: up to 1e-12 it is rounding, and 0. The known
/// value then lies where a sample does, and there is no error to compare.
double comparableVariance(double variance);

/// Standard error of an estimate as a prediction of a new observation, nugget included, in the output's units:
/// sqrt(sill * acceptedVariance(variance)). sill: of the output, squared units, not negative. NaN where the accepted
/// variance or the sill is.
double standardErrorOf(double variance, double sill);

} // namespace fenn::estimation

#endif
