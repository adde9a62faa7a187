#ifndef FENN_SURROGATEMODEL_KRIGING_POOLGUARD_H
#define FENN_SURROGATEMODEL_KRIGING_POOLGUARD_H

#include <exception>
#include <functional>
#include <memory>

#include "surrogatemodel_kriging/TaskTicket.h"

class QRunnable;
class QThreadPool;

namespace fenn
{

struct PoolJob;
struct PoolLedger;

/// maxThreads: limit of the pool; 0 leaves it at the pool's default, the number of processors. Throws std::bad_alloc.
std::unique_ptr<QThreadPool> makeThreadPool(int maxThreads);

/// Starts tasks on a pool and waits for them, in a process where threads and memory may run out.
///
/// When the system refuses a thread, Qt's pool says nothing: it counts the thread as busy for ever and keeps the task
/// that the thread was to run. Waiting for that task, as the pool's destructor does, never ends. So a task that has not
/// begun is in one of three states:
///
/// 1. Given. It is in the pool's queue, or a thread is about to run it. While threads of the pool are at work, and
///    begin tasks in the order in which they were given, the pool is merely busy: the calling thread waits.
/// 2. Lost. For a tenth of a second no thread of the pool was at work, or a task that was given later had begun. A
///    thread of ours is made and awaited, so that one of Qt's that only came late has had its chance. Then the calling
///    thread does the work of its tasks that have not begun.
/// 3. Overdue. Its work is done. If it begins after all, its ticket is refused. Until then the pool gets no tasks, and
///    calling threads do all work. No pool of the process asks Qt for threads before it has made as many of its own,
///    whose failure is told.
///
/// Nor is Qt asked for threads without the memory for them: it would end the process.
///
/// Between calls the pool holds no threads, unless tasks are overdue. Any number of threads may call run at once.
class PoolGuard
{
public:
    using MakeTask = std::function<std::unique_ptr<QRunnable>(int task, TaskTicket ticket)>;
    using RunHere = std::function<void(int task)>;

    /// pool_: outlives this object, which starts every task of it. Throws std::bad_alloc.
    explicit PoolGuard(std::unique_ptr<QThreadPool>& pool_);

    /// Waits up to a second for overdue tasks. A pool whose tasks have not begun by then is released, not deleted: its
    /// destructor would not return.
    ~PoolGuard();

    PoolGuard(const PoolGuard& other) = delete;
    PoolGuard& operator=(const PoolGuard& other) = delete;

    /// Starts makeTask(0) to makeTask(numTasks - 1), each before the next is made; returns when the work of all is
    /// done. A task shows its ticket. runHere(k) does the work of task k on the calling thread; it must not throw.
    ///
    /// Passes on what making or starting a task throws, after the work of the tasks started before is done.
    void run(int numTasks, const MakeTask& makeTask, const RunHere& runHere);

    /// Runs the piece on the calling thread and, as tasks, on up to numOthers threads of the pool at the same time.
    /// When it returns on the calling thread, no further run begins; returns when no run is left. The piece must not
    /// throw. Passes on what starting a task throws.
    void runBesideCaller(int numOthers, const std::function<void()>& piece);

private:
    struct Look;

    std::exception_ptr startTasks(const std::shared_ptr<PoolJob>& job, int numTasks, const MakeTask& makeTask);
    void startTask(const std::shared_ptr<PoolJob>& job, int task, const MakeTask& makeTask);
    bool mayStart(int numTasks) const;
    void waitFor(PoolJob& job, const RunHere& runHere);
    void withdrawTasks(PoolJob& job);
    bool waitForPool();

    std::unique_ptr<QThreadPool>& pool;
    std::shared_ptr<PoolLedger> ledger; // overdue tasks may outlive this object
};

} // namespace fenn

#endif
