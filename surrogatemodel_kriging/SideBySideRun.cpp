#include "surrogatemodel_kriging/SideBySideRun.h"

#include <exception>
#include <memory>

#include <QRunnable>
#include <QThreadPool>

#include "surrogatemodel_kriging/TaskHandOver.h"

namespace fenn
{

namespace
{

class PieceTask : public QRunnable
{
public:
    explicit PieceTask(const std::function<void()>* piece_) : piece(piece_) {}

    void run() override
    {
        TaskHandOver::take();
        (*piece)();
        TaskHandOver::give();
    }

private:
    const std::function<void()>* piece;
};

} // namespace

void runSideBySide(QThreadPool& pool, int numPieces, const std::function<void()>& piece)
{
    std::exception_ptr startFailure;
    try
    {
        for (int p = 1; p < numPieces; ++p)
        {
            auto task = std::make_unique<PieceTask>(&piece);
            TaskHandOver::give();
            pool.start(task.get(), 0);
            static_cast<void>(task.release()); // the pool's, and perhaps already deleted
        }
    }
    catch (...)
    {
        startFailure = std::current_exception();
    }
    piece();
    pool.waitForDone(-1);
    TaskHandOver::take();
    if (startFailure)
        std::rethrow_exception(startFailure);
}

} // namespace fenn
