#ifndef FENN_ESTIMATION_THREADCOUNT_H
#define FENN_ESTIMATION_THREADCOUNT_H

#include <string>

namespace fenn::estimation
{

/// The cores that this process may use: those that the system schedules it on (its affinity), or fewer where a control
/// group grants it less processor time. At least 1. Asks the system each time.
int availableCores();

/// numThreads where it is above 0, otherwise availableCores().
int chooseThreadCount(int numThreads);

/// The cores that the control groups of this process grant, as processor time over elapsed time: the least of its own
/// group and the enclosing ones, of both versions of control groups; infinity without a limit. membership: the text of
/// /proc/self/cgroup; root: where control groups are mounted. What cannot be read sets no limit.
double grantedCores(const std::string& membership, const std::string& root);

} // namespace fenn::estimation

#endif
