// Two tasks of a pool write to one number at the same time: a race on purpose, in our own code and run by Qt. All else
// is handed over as the library does it, so that this race alone is there to be reported. Shows that neither the
// suppressions for Qt nor the hand-over blind the thread sanitizer.

#include <atomic>
#include <thread>

#include <QRunnable>
#include <QThreadPool>

#include "surrogatemodel_kriging/TaskHandOver.h"

namespace
{

constexpr int numTasks = 2;
std::atomic<int> numRunning{0};
int plantedCounter = 0;

class PlantedRace : public QRunnable
{
public:
    void run() override
    {
        fenn::TaskHandOver::take();
        // Both are past their hand-over before one writes. Relaxed: waiting must not put the writes in order.
        numRunning.fetch_add(1, std::memory_order_relaxed);
        while (numRunning.load(std::memory_order_relaxed) < numTasks)
            std::this_thread::yield();
        for (int i = 0; i < 1000; ++i)
            plantedCounter = plantedCounter + 1;
        fenn::TaskHandOver::give();
    }
};

} // namespace

int main()
{
    QThreadPool pool;
    pool.setMaxThreadCount(numTasks);
    for (int task = 0; task < numTasks; ++task)
    {
        auto* race = new PlantedRace; // the pool's from here on
        fenn::TaskHandOver::give();
        pool.start(race);
    }
    pool.waitForDone();
    fenn::TaskHandOver::take();
    return plantedCounter > 0 ? 0 : 1;
}
