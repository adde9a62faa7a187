#ifndef FENN_SURROGATEMODEL_KRIGING_MEMORYRESERVE_H
#define FENN_SURROGATEMODEL_KRIGING_MEMORYRESERVE_H

namespace fenn
{

// Probe for the memory that Qt will need: allocate, then free. Qt aborts when its own allocation fails, and may still
// do so when another thread takes the memory in between.

/// For making a thread pool. Throws std::bad_alloc.
void reserveMemoryForPool();

/// Whether numThreads threads can be started and run, stacks included.
bool hasMemoryForThreads(int numThreads);

} // namespace fenn

#endif
