#include <string>
#include <vector>

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "analysis/OutputSill.h"
#include "estimation/MergedSamples.h"
#include "estimation/RangeInUnits.h"
#include "python/src/Bindings.h"
#include "python/src/CoreModel.h"
#include "python/src/Signals.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace krige::python
{

namespace py = pybind11;
using namespace pybind11::literals;
using fenn::analysis::DataSettings;

namespace
{

py::dict reportOf(const CoreModel& model)
{
    const fenn::estimation::EngineReport report = model.get().getReport();
    return py::dict("engine"_a = report.engine, "sentence"_a = report.sentence, "bound"_a = report.bound,
                    "is_exact"_a = report.isExact);
}

std::vector<double> sillsOf(const CoreModel& model)
{
    const py::gil_scoped_release unlocked;
    std::vector<double> values;
    for (const fenn::analysis::OutputSill& sill : model.get().getSills(checkingSignals()))
        values.push_back(sill.value);
    return values;
}

std::vector<double> variancesOf(const CoreModel& model)
{
    const SurrogateModelDataBlock& block = model.get().getEstimator().getParts().getDataBlock();
    std::vector<double> variances;
    for (int w = 0; w < block.getNumOutputVars(); ++w)
        variances.push_back(block.getOutputVarSampleVariance(w));
    return variances;
}

} // namespace

void bindModel(py::module_& module)
{
    py::register_exception<MemoryShortage>(module, "MemoryShortage", PyExc_MemoryError);

    py::class_<CoreModel>(module, "Model")
        .def(py::init<const py::object&, const py::object&, const DataSettings&, const py::object&, int, bool, bool>(),
             "X"_a, "y"_a, "settings"_a, "include"_a = py::none(), py::kw_only(), "n_threads"_a = 1, "exact"_a = false,
             "tell_apart"_a = true)
        .def("estimate", &CoreModel::estimate, "X"_a, "out"_a = py::none(), "variance_out"_a = py::none())
        .def("predict", &CoreModel::predict, "X"_a, "out"_a, "variance_out"_a = py::none(), "std_out"_a = py::none(),
             "lower_out"_a = py::none(), "upper_out"_a = py::none(), "coverage"_a = 0.95)
        .def_property_readonly("report", &reportOf)
        .def_property_readonly("sills", &sillsOf)
        .def_property_readonly("output_variances", &variancesOf)
        .def_property_readonly("ranges", [](const CoreModel& model)
                               { return fenn::estimation::calcRangesPerInput(model.get().getEstimator().getParts()); })
        .def_property_readonly("n_points", [](const CoreModel& model)
                               { return model.get().getEstimator().getParts().getPoints().size(); })
        .def_property_readonly(
            "merged", [](const CoreModel& model)
            { return fenn::estimation::getMergedSamples(model.get().getEstimator().getParts()).groups; });
}

} // namespace krige::python
