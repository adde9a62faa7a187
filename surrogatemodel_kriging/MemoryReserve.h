#ifndef FENN_SURROGATEMODEL_KRIGING_MEMORYRESERVE_H
#define FENN_SURROGATEMODEL_KRIGING_MEMORYRESERVE_H

namespace fenn
{

// What Qt is about to allocate is asked for just before, and given back: Qt ends the process when its own allocations
// fail. Another thread may still take the memory in between.

/// For a pool. Throws std::bad_alloc.
void reserveMemoryForPool();

/// Whether there is memory to start so many threads and run them, stacks included.
bool hasMemoryForThreads(int numThreads);

} // namespace fenn

#endif
