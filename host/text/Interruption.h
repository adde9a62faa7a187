#ifndef FENN_HOST_TEXT_INTERRUPTION_H
#define FENN_HOST_TEXT_INTERRUPTION_H

#include <csignal>

namespace krige
{

/// Turns the first Ctrl-C (SIGINT) of its lifetime into a question that long work asks; a second one ends the process,
/// as without it. Does nothing where the signal is ignored, as in a background job. One at a time.
class Interruption
{
public:
    Interruption();
    Interruption(const Interruption& other) = delete;
    Interruption& operator=(const Interruption& other) = delete;
    ~Interruption();

    bool isRequested() const;

private:
    struct sigaction previous = {};
};

} // namespace krige

#endif
