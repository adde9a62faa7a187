#include <pybind11/pybind11.h>

#include "python/src/Bindings.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"

namespace py = pybind11;

PYBIND11_MODULE(_core, module)
{
    module.attr("__version__") = KRIGE_VERSION;
    module.doc() = "What krige is made of. Private: use the package.";
    // The package words it for people: krige._errors.
    py::register_exception<SurrogateModelInterface::Error>(module, "LibraryError", PyExc_RuntimeError);
    krige::python::bindSettings(module);
    krige::python::bindModel(module);
    krige::python::bindAnalysis(module);
    krige::python::bindTuning(module);
}
