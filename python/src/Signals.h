#ifndef FENN_PYTHON_SIGNALS_H
#define FENN_PYTHON_SIGNALS_H

#include "analysis/Progress.h"

namespace krige::python
{

// For work that runs without the interpreter's lock.

/// Lets the interpreter run its signal handlers. Throws pybind11::error_already_set where one of them raised, as that
/// of Ctrl-C does.
void checkSignals();

/// A callback that does so after each piece of work.
fenn::analysis::Progress checkingSignals();

} // namespace krige::python

#endif
