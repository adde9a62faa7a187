#include "surrogatemodel_kriging/PoolGuard.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <limits>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include <QRunnable>
#include <QThreadPool>

#include "surrogatemodel_kriging/MemoryReserve.h"
#include "surrogatemodel_kriging/TaskHandOver.h"

namespace fenn
{

namespace
{

// Far beyond what a thread takes to begin (some 50 us), and not too long for a host whose threads have run out. They
// decide who does a task's work and whether a pool is given up, never whether a result is right.
constexpr std::chrono::milliseconds requestPatience{100};
constexpr std::chrono::milliseconds farewellPatience{1000};

// Threads are let go after each call. Those of a pool that cannot be waited for are to end by themselves, well before
// the pool is given up.
constexpr int idleMilliseconds = 100;

/// Set when a pool lost a task, cleared when threads could be made again.
std::atomic<bool> threadsAreScarce{false};

/// Whether so many threads can be made at the same time: each makes the next one and waits for it.
bool canMakeThreads(int count)
{
    if (count == 0)
        return true;
    try
    {
        bool canMakeOthers = false;
        std::thread([&] { canMakeOthers = canMakeThreads(count - 1); }).join();
        return canMakeOthers;
    }
    catch (const std::exception&)
    {
        return false;
    }
}

/// A thread that is made now runs and ends: one that Qt made before has had its turn too.
void giveLateThreadsATurn()
{
    static_cast<void>(canMakeThreads(1));
}

enum class TaskState
{
    unknownToPool,
    given,
    begun,
    done,
    withdrawn // done by the calling thread, or no longer wanted
};

} // namespace

/// What a pool owes. The mutex guards what follows it, and all jobs of the pool.
struct PoolLedger
{
    std::mutex startMutex; // held from a task's number to the pool's queue: the order of both is the same
    std::mutex mutex;
    std::condition_variable changed;
    int numTasks = 0;              // given to the pool, and not yet through with their run
    int numAtWork = 0;             // of these, those that have begun
    int numOverdue = 0;            // of these, those that were withdrawn
    std::uint64_t newestGiven = 0; // tasks are numbered in the order in which they were given, from 1
    std::uint64_t newestBegun = 0;
    std::uint64_t numChanges = 0; // tasks that began, and tasks that were through
};

/// The tasks of one call; guarded by the ledger's mutex.
struct PoolJob
{
    struct Task
    {
        TaskState state = TaskState::unknownToPool;
        std::uint64_t number = 0;
    };

    PoolJob(std::shared_ptr<PoolLedger> ledger_, int numTasks)
        : ledger(std::move(ledger_)), tasks(static_cast<std::size_t>(numTasks))
    {
    }

    bool isDone() const
    {
        return numGiven == 0 && numAtWork == 0;
    }

    std::uint64_t getOldestGiven() const
    {
        std::uint64_t oldest = std::numeric_limits<std::uint64_t>::max();
        for (const Task& task : tasks)
        {
            if (task.state == TaskState::given)
                oldest = std::min(oldest, task.number);
        }
        return oldest;
    }

    void give(Task& task)
    {
        task = {TaskState::given, ++ledger->newestGiven};
        ++numGiven;
        ++ledger->numTasks;
    }

    void takeBack(Task& task)
    {
        task.state = TaskState::unknownToPool;
        --numGiven;
        --ledger->numTasks;
    }

    void withdraw(Task& task)
    {
        task.state = TaskState::withdrawn;
        --numGiven;
        ++ledger->numOverdue;
    }

    void begin(Task& task)
    {
        task.state = TaskState::begun;
        --numGiven;
        ++numAtWork;
        ++ledger->numAtWork;
        ++ledger->numChanges;
        ledger->newestBegun = std::max(ledger->newestBegun, task.number);
    }

    void end(Task& task)
    {
        task.state = TaskState::done;
        --numAtWork;
        --ledger->numAtWork;
        --ledger->numTasks;
        ++ledger->numChanges;
    }

    std::shared_ptr<PoolLedger> ledger;
    std::vector<Task> tasks;
    int numGiven = 0; // and not begun
    int numAtWork = 0;
};

bool TaskTicket::begin()
{
    if (!job)
        return true;
    PoolLedger& ledger = *job->ledger;
    std::unique_lock<std::mutex> lock(ledger.mutex);
    PoolJob::Task& task = job->tasks[static_cast<std::size_t>(index)];
    if (task.state != TaskState::withdrawn)
    {
        job->begin(task);
        return true;
    }
    --ledger.numOverdue;
    const bool isLast = --ledger.numTasks == 0;
    lock.unlock();
    if (isLast)
        ledger.changed.notify_all();
    return false;
}

void TaskTicket::end()
{
    if (!job)
        return;
    PoolLedger& ledger = *job->ledger;
    std::unique_lock<std::mutex> lock(ledger.mutex);
    job->end(job->tasks[static_cast<std::size_t>(index)]);
    const bool isAwaited = ledger.numTasks == 0 || job->isDone();
    lock.unlock();
    if (isAwaited)
        ledger.changed.notify_all();
}

namespace
{

class PieceTask : public QRunnable
{
public:
    PieceTask(const std::function<void()>& piece_, TaskTicket ticket_) : piece(piece_), ticket(std::move(ticket_)) {}

    void run() override
    {
        TaskHandOver::take();
        if (!ticket.begin())
            return;
        piece();
        TaskHandOver::give();
        ticket.end();
    }

private:
    const std::function<void()>& piece;
    TaskTicket ticket;
};

} // namespace

/// How far a pool was when a calling thread looked.
struct PoolGuard::Look
{
    explicit Look(const PoolLedger& ledger) : newestBegun(ledger.newestBegun), numChanges(ledger.numChanges) {}

    /// Whether, since then, the pool has done nothing, or not begun a task of the job that it would have begun first.
    bool isLost(const PoolJob& job) const
    {
        const bool isIdle = job.ledger->numAtWork == 0 && job.ledger->numChanges == numChanges;
        return job.numGiven > 0 && (isIdle || job.getOldestGiven() < newestBegun);
    }

    std::uint64_t newestBegun;
    std::uint64_t numChanges;
};

std::unique_ptr<QThreadPool> makeThreadPool(int maxThreads)
{
    reserveMemoryForPool();
    auto pool = std::make_unique<QThreadPool>();
    pool->setExpiryTimeout(idleMilliseconds);
    if (maxThreads > 0)
        pool->setMaxThreadCount(maxThreads);
    return pool;
}

PoolGuard::PoolGuard(std::unique_ptr<QThreadPool>& pool_) : pool(pool_), ledger(std::make_shared<PoolLedger>()) {}

PoolGuard::~PoolGuard()
{
    std::unique_lock<std::mutex> lock(ledger->mutex);
    const bool isFree = ledger->changed.wait_for(lock, farewellPatience, [this] { return ledger->numTasks == 0; });
    lock.unlock();
    if (!isFree)
        static_cast<void>(pool.release());
}

void PoolGuard::run(int numTasks, const MakeTask& makeTask, const RunHere& runHere)
{
    if (!mayStart(numTasks))
    {
        for (int k = 0; k < numTasks; ++k)
            runHere(k);
        return;
    }
    const auto job = std::make_shared<PoolJob>(ledger, numTasks);
    const std::exception_ptr startFailure = startTasks(job, numTasks, makeTask);
    waitFor(*job, runHere);
    TaskHandOver::take();
    if (startFailure)
        std::rethrow_exception(startFailure);
}

void PoolGuard::runBesideCaller(int numOthers, const std::function<void()>& piece)
{
    if (!mayStart(numOthers))
        return piece();

    const auto job = std::make_shared<PoolJob>(ledger, numOthers);
    const MakeTask makeTask = [&piece](int, TaskTicket ticket)
    {
        return std::make_unique<PieceTask>(piece, std::move(ticket));
    };
    const std::exception_ptr startFailure = startTasks(job, numOthers, makeTask);
    piece();
    withdrawTasks(*job);
    TaskHandOver::take();
    if (startFailure)
        std::rethrow_exception(startFailure);
}

std::exception_ptr PoolGuard::startTasks(const std::shared_ptr<PoolJob>& job, int numTasks, const MakeTask& makeTask)
{
    const std::lock_guard<std::mutex> inOrder(ledger->startMutex);
    try
    {
        for (int k = 0; k < numTasks; ++k)
            startTask(job, k, makeTask);
    }
    catch (...)
    {
        return std::current_exception();
    }
    return nullptr;
}

void PoolGuard::startTask(const std::shared_ptr<PoolJob>& job, int task, const MakeTask& makeTask)
{
    std::unique_ptr<QRunnable> made = makeTask(task, TaskTicket(job, task));
    PoolJob::Task& entry = job->tasks[static_cast<std::size_t>(task)];
    {
        const std::lock_guard<std::mutex> lock(ledger->mutex);
        job->give(entry);
    }
    TaskHandOver::give();
    try
    {
        pool->start(made.get(), 0);
    }
    catch (...)
    {
        const std::lock_guard<std::mutex> lock(ledger->mutex);
        job->takeBack(entry);
        throw;
    }
    static_cast<void>(made.release()); // the pool's, and perhaps already deleted
}

/// No threads are asked for where the system is likely to refuse them.
bool PoolGuard::mayStart(int numTasks) const
{
    if (numTasks < 1 || !hasMemoryForThreads(numTasks))
        return false;
    {
        const std::lock_guard<std::mutex> lock(ledger->mutex);
        if (ledger->numOverdue > 0)
            return false;
    }
    if (!threadsAreScarce)
        return true;
    if (!canMakeThreads(numTasks))
        return false;
    threadsAreScarce = false;
    return true;
}

void PoolGuard::waitFor(PoolJob& job, const RunHere& runHere)
{
    std::unique_lock<std::mutex> lock(ledger->mutex);
    bool hasThreads = true;
    while (!job.isDone())
    {
        const Look before(*ledger);
        if (ledger->numTasks == job.numGiven + job.numAtWork)
        {
            lock.unlock();
            hasThreads = !waitForPool(); // being woken once is enough
            lock.lock();
        }
        else // tasks of other calls are not waited for
            ledger->changed.wait_for(lock, requestPatience, [&job] { return job.isDone(); });
        if (!before.isLost(job))
            continue;

        lock.unlock();
        giveLateThreadsATurn();
        lock.lock();
        for (std::size_t k = 0; k < job.tasks.size(); ++k)
        {
            if (job.tasks[k].state != TaskState::given)
                continue;
            job.withdraw(job.tasks[k]);
            threadsAreScarce = true;
            lock.unlock();
            runHere(static_cast<int>(k));
            lock.lock();
        }
    }
    const bool isLast = ledger->numTasks == 0;
    lock.unlock();
    if (isLast && hasThreads)
        waitForPool();
}

/// The tasks that have not begun are not wanted any more; waits for the others.
void PoolGuard::withdrawTasks(PoolJob& job)
{
    std::unique_lock<std::mutex> lock(ledger->mutex);
    for (PoolJob::Task& task : job.tasks)
    {
        if (task.state == TaskState::given)
            job.withdraw(task);
    }
    ledger->changed.wait(lock, [&job] { return job.isDone(); });
    lock.unlock();
    waitForPool();
    lock.lock();
    if (ledger->numOverdue == 0)
        return;
    lock.unlock();
    giveLateThreadsATurn();
    lock.lock();
    if (ledger->numOverdue > 0 && ledger->numAtWork == 0)
        threadsAreScarce = true;
}

/// Until the pool has no task left and its threads are gone, but for a while only; returns whether they are.
bool PoolGuard::waitForPool()
{
    return pool->waitForDone(static_cast<int>(requestPatience.count()));
}

} // namespace fenn
