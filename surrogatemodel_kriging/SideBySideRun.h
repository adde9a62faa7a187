#ifndef FENN_SURROGATEMODEL_KRIGING_SIDEBYSIDERUN_H
#define FENN_SURROGATEMODEL_KRIGING_SIDEBYSIDERUN_H

#include <functional>

class QThreadPool;

namespace fenn
{

/// Runs a piece of work numPieces times at once: on the calling thread, and as a task of the pool each other time.
/// Returns when no run is left. The piece takes what is left of a shared job whenever it starts, so a task that the
/// pool starts late, or after the job is done, costs nothing; it must not throw.
///
/// Passes on what starting a task throws, after the runs that did start.
void runSideBySide(QThreadPool& pool, int numPieces, const std::function<void()>& piece);

} // namespace fenn

#endif
