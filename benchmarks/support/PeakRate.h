#ifndef FENN_BENCHMARKS_SUPPORT_PEAKRATE_H
#define FENN_BENCHMARKS_SUPPORT_PEAKRATE_H

namespace fenn::benchmarks
{

/// GFlop/s at which one core of this processor multiplies and subtracts in registers, each rounded for itself: the most
/// that an elimination in exact order can reach. The best of some repeats, in processor time of the thread. Measure it
/// beside what is compared with it: the clock of a core changes within seconds.
double measureRoundedApartRate();

/// The same where both are rounded once, as LAPACK's kernels do; not above the other where there is no such
/// instruction.
double measureFusedRate();

} // namespace fenn::benchmarks

#endif
