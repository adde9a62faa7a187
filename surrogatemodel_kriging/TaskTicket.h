#ifndef FENN_SURROGATEMODEL_KRIGING_TASKTICKET_H
#define FENN_SURROGATEMODEL_KRIGING_TASKTICKET_H

#include <memory>
#include <utility>

namespace fenn
{

struct PoolJob;

/// What a task of a guarded pool shows before it runs; see PoolGuard. A ticket made without a job lets its task run.
class TaskTicket
{
public:
    TaskTicket() = default;
    TaskTicket(std::shared_ptr<PoolJob> job_, int index_) : job(std::move(job_)), index(index_) {}

    /// Called by the task before anything else. False: the calling thread has done its work, and what the task refers
    /// to may be gone.
    bool begin();

    /// Called by a task that has begun, as its last step: what it refers to may be gone when this returns.
    void end();

private:
    std::shared_ptr<PoolJob> job;
    int index = 0;
};

} // namespace fenn

#endif
