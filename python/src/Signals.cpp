#include "python/src/Signals.h"

#include <pybind11/pybind11.h>

namespace krige::python
{

void checkSignals()
{
    const pybind11::gil_scoped_acquire lock;
    if (PyErr_CheckSignals() != 0)
        throw pybind11::error_already_set();
}

fenn::analysis::Progress checkingSignals()
{
    return [](std::size_t, std::size_t)
    {
        checkSignals();
        return true;
    };
}

} // namespace krige::python
