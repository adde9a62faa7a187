#ifndef FENN_ESTIMATION_SHAREWORK_H
#define FENN_ESTIMATION_SHAREWORK_H

#include <cstddef>
#include <functional>

namespace fenn
{
class WorkerPool;
}

namespace fenn::estimation
{

/// Calls work(0) to work(count - 1), once each, on the calling thread and on those of the pool, in any order. Rethrows
/// the first exception that a call throws, when all calls that had begun are over; others may then not be made.
void shareWork(WorkerPool& workers, std::size_t count, const std::function<void(std::size_t)>& work);

} // namespace fenn::estimation

#endif
