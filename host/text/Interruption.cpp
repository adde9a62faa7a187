#include "host/text/Interruption.h"

namespace krige
{

namespace
{

volatile std::sig_atomic_t wasInterrupted = 0;

void noteInterruption(int /*signal*/)
{
    wasInterrupted = 1;
}

} // namespace

Interruption::Interruption()
{
    wasInterrupted = 0;
    sigaction(SIGINT, nullptr, &previous);
    if (previous.sa_handler == SIG_IGN)
        return;
    struct sigaction noting = {};
    noting.sa_handler = noteInterruption;
    noting.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigemptyset(&noting.sa_mask);
    sigaction(SIGINT, &noting, nullptr);
}

Interruption::~Interruption()
{
    sigaction(SIGINT, &previous, nullptr);
}

bool Interruption::isRequested() const
{
    return wasInterrupted != 0;
}

} // namespace krige
