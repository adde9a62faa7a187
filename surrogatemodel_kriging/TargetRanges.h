#ifndef FENN_SURROGATEMODEL_KRIGING_TARGETRANGES_H
#define FENN_SURROGATEMODEL_KRIGING_TARGETRANGES_H

#include <vector>

namespace fenn
{

/// Consecutive targets of one task.
struct TargetRange
{
    int first = 0;
    int count = 0;
};

/// Splits numTargets targets over maxThreads tasks: equal ranges, rounded down, the last one taking the rest; a single
/// range, which may be empty, when there are fewer targets than threads or one thread. maxThreads is at least 1; a
/// negative number of targets counts as none.
std::vector<TargetRange> splitTargets(int numTargets, int maxThreads);

} // namespace fenn

#endif
