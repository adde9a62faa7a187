#ifndef FENN_PYTHON_BINDINGS_H
#define FENN_PYTHON_BINDINGS_H

#include <pybind11/pybind11.h>

namespace krige::python
{

// What each file adds to the module; Settings come first, for they are arguments of the others.
void bindSettings(pybind11::module_& module);
void bindModel(pybind11::module_& module);
void bindAnalysis(pybind11::module_& module);
void bindTuning(pybind11::module_& module);

} // namespace krige::python

#endif
