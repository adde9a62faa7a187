#ifndef FENN_TESTS_SUPPORT_GUARDEDPOOL_H
#define FENN_TESTS_SUPPORT_GUARDEDPOOL_H

#include <functional>
#include <memory>
#include <utility>

#include <QRunnable>
#include <QThreadPool>

#include "surrogatemodel_kriging/PoolGuard.h"
#include "surrogatemodel_kriging/TaskHandOver.h"

namespace fenn::test
{

/// A pool with its guard whose tasks call a piece of work with their number.
class GuardedPool
{
public:
    using Piece = std::function<void(int)>;

    explicit GuardedPool(int maxThreads) : pool(makeThreadPool(maxThreads)), guard(pool) {}

    void run(int numPieces, const Piece& piece)
    {
        guard.run(
            numPieces, [&piece](int k, TaskTicket ticket) { return std::make_unique<Task>(piece, k, ticket); }, piece);
    }

    std::unique_ptr<QThreadPool> pool;
    PoolGuard guard;

private:
    class Task : public QRunnable
    {
    public:
        Task(const Piece& piece_, int number_, TaskTicket ticket_)
            : piece(piece_), number(number_), ticket(std::move(ticket_))
        {
        }

        void run() override
        {
            TaskHandOver::take();
            if (!ticket.begin())
                return;
            piece(number);
            TaskHandOver::give();
            ticket.end();
        }

    private:
        const Piece& piece;
        int number;
        TaskTicket ticket;
    };
};

} // namespace fenn::test

#endif
