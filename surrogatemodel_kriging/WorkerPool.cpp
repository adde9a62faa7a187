#include "surrogatemodel_kriging/WorkerPool.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <thread>
#include <utility>

#include <QRunnable>
#include <QThreadPool>

#include "surrogatemodel_kriging/MemoryReserve.h"
#include "surrogatemodel_kriging/TaskHandOver.h"

namespace fenn
{

namespace
{

// Far beyond what a thread takes to begin (some 50 us), and not too long for a host whose threads have run out. They
// decide who runs a piece and whether a pool is given up, never whether a result is right.
constexpr std::chrono::milliseconds requestPatience{100};
constexpr std::chrono::milliseconds farewellPatience{1000};

// Threads are let go after each job. Those of a pool that cannot be waited for are to end by themselves, well before
// the pool is given up.
constexpr int idleMilliseconds = 100;

/// Set when a pool did not run a task in time, cleared when threads could be made again.
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

} // namespace

/// What a pool owes; guarded by its mutex, as are all jobs of the pool.
struct WorkerPool::Ledger
{
    std::mutex mutex;
    std::condition_variable changed;
    int numTasks = 0;   // given to the pool, and not yet through with their run
    int numOverdue = 0; // of these, those that had not begun when their job was over
};

struct WorkerPool::Job
{
    Job(int numPieces_, const Piece& piece_) : numPieces(numPieces_), piece(&piece_) {}

    bool isDone() const
    {
        return numDone == numPieces;
    }

    /// Lets go of the lock while the piece is run.
    void runNextPiece(std::unique_lock<std::mutex>& lock)
    {
        if (numBegun == numPieces)
            return;
        const int index = numBegun++;
        lock.unlock();
        (*piece)(index);
        lock.lock();
        ++numDone;
    }

    int numTasks = 0;     // started
    int numTasksLeft = 0; // of these, those that have not begun
    int numPieces;
    int numBegun = 0;
    int numDone = 0;
    bool isOver = false;
    const Piece* piece; // gone when the job is over
};

class WorkerPool::Task : public QRunnable
{
public:
    Task(std::shared_ptr<Ledger> ledger_, std::shared_ptr<Job> job_) : ledger(std::move(ledger_)), job(std::move(job_))
    {
    }

    void run() override
    {
        TaskHandOver::take();
        std::unique_lock<std::mutex> lock(ledger->mutex);
        if (job->isOver)
            --ledger->numOverdue;
        else
        {
            --job->numTasksLeft;
            job->runNextPiece(lock);
        }
        const bool isAwaited = --ledger->numTasks == 0 || job->isDone();
        TaskHandOver::give();
        lock.unlock();
        if (isAwaited)
            ledger->changed.notify_all();
    }

private:
    std::shared_ptr<Ledger> ledger;
    std::shared_ptr<Job> job;
};

WorkerPool::WorkerPool(int maxThreads) : ledger(std::make_shared<Ledger>())
{
    reserveMemoryForPool();
    pool = std::make_unique<QThreadPool>();
    pool->setExpiryTimeout(idleMilliseconds);
    if (maxThreads > 0)
        pool->setMaxThreadCount(maxThreads);
}

WorkerPool::~WorkerPool()
{
    std::unique_lock<std::mutex> lock(ledger->mutex);
    const bool isFree = ledger->changed.wait_for(lock, farewellPatience, [this] { return ledger->numTasks == 0; });
    lock.unlock();
    if (!isFree)
        static_cast<void>(pool.release()); // its destructor would never return
}

int WorkerPool::getMaxThreads() const
{
    return pool->maxThreadCount();
}

void WorkerPool::run(int numPieces, const Piece& piece)
{
    const auto job = std::make_shared<Job>(numPieces, piece);
    const std::exception_ptr startFailure = startTasks(job, numPieces);
    finish(*job);
    if (startFailure)
        std::rethrow_exception(startFailure);
}

void WorkerPool::runBesideCaller(int numPieces, const std::function<void()>& piece)
{
    const Piece anyPiece = [&piece](int)
    {
        piece();
    };
    const auto job = std::make_shared<Job>(numPieces, anyPiece);
    const std::exception_ptr startFailure = startTasks(job, numPieces - 1);
    {
        std::unique_lock<std::mutex> lock(ledger->mutex);
        job->runNextPiece(lock);
    }
    finish(*job);
    if (startFailure)
        std::rethrow_exception(startFailure);
}

/// Where no threads are to be expected, none are started.
std::exception_ptr WorkerPool::startTasks(const std::shared_ptr<Job>& job, int numTasks)
{
    try
    {
        if (!mayStart(numTasks))
            return nullptr;
        for (int k = 0; k < numTasks; ++k)
            startTask(job);
    }
    catch (...)
    {
        const std::lock_guard<std::mutex> lock(ledger->mutex);
        job->numPieces -= numTasks - job->numTasks;
        return std::current_exception();
    }
    return nullptr;
}

void WorkerPool::startTask(const std::shared_ptr<Job>& job)
{
    auto task = std::make_unique<Task>(ledger, job);
    const auto count = [&](int change)
    {
        const std::lock_guard<std::mutex> lock(ledger->mutex);
        ledger->numTasks += change;
        job->numTasks += change;
        job->numTasksLeft += change;
    };
    count(1);
    TaskHandOver::give();
    try
    {
        pool->start(task.get(), 0);
    }
    catch (...)
    {
        count(-1);
        throw;
    }
    static_cast<void>(task.release()); // the pool's, and perhaps already deleted
}

bool WorkerPool::mayStart(int numTasks) const
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

/// Waits for the job's tasks, runs what they have not begun in time, and has the pool's threads gone.
void WorkerPool::finish(Job& job)
{
    std::unique_lock<std::mutex> lock(ledger->mutex);
    const auto isDone = [&job]
    {
        return job.isDone();
    };
    const bool hasTasksAtWork = job.numTasks > 0 && !job.isDone();
    if (hasTasksAtWork && job.numTasks < ledger->numTasks)
        ledger->changed.wait_for(lock, requestPatience, isDone); // other callers' tasks are not waited for
    else if (hasTasksAtWork)
    {
        lock.unlock();
        letThreadsGo(); // being woken once is enough
        lock.lock();
    }
    while (job.numBegun < job.numPieces)
        job.runNextPiece(lock);
    ledger->changed.wait(lock, isDone);
    job.isOver = true;
    ledger->numOverdue += job.numTasksLeft;
    if (job.numTasksLeft > 0)
        threadsAreScarce = true;
    const bool isLast = ledger->numTasks == 0;
    lock.unlock();
    if (isLast)
        letThreadsGo();
    TaskHandOver::take();
}

/// Returns when no task is left, but after a while in any case.
void WorkerPool::letThreadsGo()
{
    pool->waitForDone(static_cast<int>(requestPatience.count()));
}

} // namespace fenn
