#ifndef FENN_BENCHMARKS_SUPPORT_PEAKRATE_H
#define FENN_BENCHMARKS_SUPPORT_PEAKRATE_H

#include "benchmarks/support/Bars.h"

namespace fenn::benchmarks
{

/// GFlop/s at which one core of this processor multiplies and subtracts in registers, each rounded for itself: the most
/// that an elimination in exact order can reach. The best of some repeats, in processor time of the thread.
double measureRoundedApartRate();

/// The same where both are rounded once, as LAPACK's kernels do; not above the other where there is no such
/// instruction.
double measureFusedRate();

/// What repeated runs of so many operations reach of the peak rounded apart; seconds() runs once. The peak is measured
/// before and after each run: the clock of a core changes within milliseconds, with what the other cores do.
template <class Seconds>
Repeats fractionsOfPeak(int numRepeats, double operations, const Seconds& seconds)
{
    double before = measureRoundedApartRate();
    return Repeats(numRepeats,
                   [&]
                   {
                       const double rate = 1e-9 * operations / seconds();
                       const double after = measureRoundedApartRate();
                       const double fraction = rate / (0.5 * (before + after));
                       before = after;
                       return fraction;
                   });
}

} // namespace fenn::benchmarks

#endif
