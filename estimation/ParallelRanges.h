#ifndef FENN_ESTIMATION_PARALLELRANGES_H
#define FENN_ESTIMATION_PARALLELRANGES_H

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace fenn::estimation
{

/// Runs work over ranges of indices on the calling thread and on threads of its own. These are started when first
/// needed and end with this object.
///
/// Ranges are handed out ascending. When ranges throw, the exception of the lowest one is passed on, in whatever order
/// threads ran them: every range below one that throws is run. Where the system refuses threads, the others do the
/// work, at worst the calling thread alone.
///
/// Runs must neither overlap nor nest.
class ParallelRanges
{
public:
    /// Works on indices first to end - 1. slot: below the number of threads, and different for calls that run at the
    /// same time: each slot may have a workspace.
    using Work = std::function<void(std::size_t slot, std::size_t first, std::size_t end)>;

    /// numThreads: includes the calling thread; 0: the cores that this process may use.
    explicit ParallelRanges(int numThreads);
    ParallelRanges(const ParallelRanges& other) = delete;
    ParallelRanges& operator=(const ParallelRanges& other) = delete;
    ~ParallelRanges();

    /// Includes the calling thread.
    std::size_t getNumThreads() const;

    /// Covers the indices below count with ranges of rangeSize, at least 1, the last of which may be shorter. A single
    /// range is done on the calling thread, which has slot 0.
    void run(std::size_t count, std::size_t rangeSize, const Work& work);

private:
    struct Job;

    void startThreads(std::size_t numWanted);
    void serve(std::size_t slot);

    const std::size_t numThreads;
    std::vector<std::thread> threads; // thread k has slot k + 1

    std::mutex mutex; // guards what follows
    std::condition_variable jobIsThere;
    std::condition_variable helpersAreGone;
    Job* job = nullptr;          // null between runs, and when no further helper may join
    std::uint64_t jobNumber = 0; // so that a thread joins a job once
    std::size_t numHelpers = 0;  // threads at work on the job
    bool isEnding = false;
};

} // namespace fenn::estimation

#endif
