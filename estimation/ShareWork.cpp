#include "estimation/ShareWork.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>

#include "surrogatemodel_kriging/WorkerPool.h"

namespace fenn::estimation
{

namespace
{

/// What the threads of one call share.
class SharedCount
{
public:
    SharedCount(std::size_t count_, const std::function<void(std::size_t)>& work_) : count(count_), work(work_) {}

    void run()
    {
        try
        {
            for (std::size_t i = next++; i < count; i = next++)
                work(i);
        }
        catch (...)
        {
            next = count;
            const std::lock_guard<std::mutex> lock(mutex);
            if (!failure)
                failure = std::current_exception();
        }
    }

    void rethrow() const
    {
        if (failure)
            std::rethrow_exception(failure);
    }

private:
    const std::size_t count;
    const std::function<void(std::size_t)>& work;
    std::atomic<std::size_t> next{0};
    std::mutex mutex;
    std::exception_ptr failure;
};

} // namespace

void shareWork(WorkerPool& workers, std::size_t count, const std::function<void(std::size_t)>& work)
{
    SharedCount shared(count, work);
    const std::size_t numPieces = std::min(count, static_cast<std::size_t>(workers.getMaxThreads()));
    if (numPieces < 2)
        shared.run();
    else
        workers.runBesideCaller(static_cast<int>(numPieces), [&shared] { shared.run(); });
    shared.rethrow();
}

} // namespace fenn::estimation
