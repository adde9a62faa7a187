#ifndef FENN_ANALYSIS_PROGRESS_H
#define FENN_ANALYSIS_PROGRESS_H

#include <cstddef>
#include <exception>
#include <functional>

namespace fenn::analysis
{

/// Called on the calling thread after each piece of work, with the number of pieces done and their total. Returns false
/// to stop. May be empty.
using Progress = std::function<bool(std::size_t numDone, std::size_t total)>;

/// Thrown where a progress callback asked to stop.
class Cancelled : public std::exception
{
public:
    const char* what() const noexcept override
    {
        return "cancelled";
    }
};

inline void report(const Progress& progress, std::size_t numDone, std::size_t total)
{
    if (progress && !progress(numDone, total))
        throw Cancelled();
}

} // namespace fenn::analysis

#endif
