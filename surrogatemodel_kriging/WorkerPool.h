#ifndef FENN_SURROGATEMODEL_KRIGING_WORKERPOOL_H
#define FENN_SURROGATEMODEL_KRIGING_WORKERPOOL_H

#include <exception>
#include <functional>
#include <memory>

class QThreadPool;

namespace fenn
{

/// A private pool of threads, for a process in which threads and memory may run out.
///
/// When the system refuses a thread, Qt's pool says nothing: it counts the thread as busy for ever and never runs its
/// task, and whoever waits for the pool, its destructor included, waits for ever. So nobody here waits for a task that
/// has not begun. Tasks are alike: each takes the next piece of its job when it begins. Pieces that no task has begun
/// after a tenth of a second are run by the calling thread, and a task that comes after that finds nothing to do. A
/// pool that owes such tasks is given no further ones. After a refusal, every pool of the process tries with threads of
/// its own, whose failure is told, whether there are threads again before it asks Qt. Nor is Qt asked where there is no
/// memory for threads: there it would end the process.
///
/// Between jobs the pool holds no threads, unless tasks are overdue. Any number of threads may run jobs at once.
class WorkerPool
{
public:
    using Piece = std::function<void(int)>;

    /// maxThreads: limit of the pool; 0 leaves it at the pool's default, the number of processors.
    /// Throws std::bad_alloc.
    explicit WorkerPool(int maxThreads);

    /// Waits up to a second for overdue tasks. A pool whose tasks have not begun by then is left allocated.
    ~WorkerPool();

    WorkerPool(const WorkerPool& other) = delete;
    WorkerPool& operator=(const WorkerPool& other) = delete;

    int getMaxThreads() const;

    /// Runs piece(0) to piece(numPieces - 1), once each, as one task of the pool each; returns when all have run. A
    /// piece must not throw.
    ///
    /// Passes on what starting a task throws, such as std::bad_alloc, after the pieces of the tasks that did start.
    void run(int numPieces, const Piece& piece);

    /// The same for one piece, run numPieces times, once of these by the calling thread at once.
    void runBesideCaller(int numPieces, const std::function<void()>& piece);

private:
    struct Ledger;
    struct Job;
    class Task;

    std::exception_ptr startTasks(const std::shared_ptr<Job>& job, int numTasks);
    void startTask(const std::shared_ptr<Job>& job);
    bool mayStart(int numTasks) const;
    void finish(Job& job);
    void letThreadsGo();

    std::unique_ptr<QThreadPool> pool;
    std::shared_ptr<Ledger> ledger; // overdue tasks may outlive this object
};

} // namespace fenn

#endif
