#ifndef FENN_SURROGATEMODEL_KRIGING_MEMORYRESERVE_H
#define FENN_SURROGATEMODEL_KRIGING_MEMORYRESERVE_H

namespace fenn
{

// Probes for the memory that Qt will need: allocate, then free. Qt ends the process when its own allocation fails.
//
// 1. Before a pool is made: without the memory, std::bad_alloc, which the host can catch.
// 2. Before tasks are started: without the memory, no threads, and the calling thread does the work.
// 3. After the probe another thread can take the memory. Nothing guards against that.

/// For making a thread pool. Throws std::bad_alloc.
void reserveMemoryForPool();

/// Whether there is memory for so many threads, stacks included. True without a probe where this process cannot be
/// refused memory at all.
bool hasMemoryForThreads(int numThreads);

} // namespace fenn

#endif
