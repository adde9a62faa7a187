#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include "analysis/DataSettings.h"
#include "python/src/Bindings.h"

namespace krige::python
{

namespace py = pybind11;
using namespace pybind11::literals;
using fenn::analysis::Anisotropy;
using fenn::analysis::DataSettings;
using fenn::analysis::SillChoice;

namespace
{

/// "auto", "sample" or a number.
SillChoice sillChoiceOf(const py::handle& value)
{
    if (!py::isinstance<py::str>(value))
        return {SillChoice::Rule::Given, value.cast<double>()};
    return {value.cast<std::string>() == "sample" ? SillChoice::Rule::Sample : SillChoice::Rule::Automatic, 0.0};
}

py::object toPython(const SillChoice& choice)
{
    switch (choice.rule)
    {
    case SillChoice::Rule::Given:
        return py::float_(choice.value);
    case SillChoice::Rule::Sample:
        return py::str("sample");
    case SillChoice::Rule::Automatic:
        break;
    }
    return py::str("auto");
}

DataSettings makeSettings(double duplicateTolerance, const std::vector<double>& scaleFactors, int driftOrder,
                          double rangeFraction, std::optional<double> rangeInInputUnits, double nugget,
                          int numNearestPoints, const py::list& sills,
                          std::optional<std::pair<double, double>> anisotropy, bool areLogarithms,
                          std::pair<double, double> clamp)
{
    DataSettings settings;
    settings.duplicateTolerance = duplicateTolerance;
    settings.scaleFactors = scaleFactors;
    settings.driftOrder = driftOrder;
    settings.rangeFraction = rangeFraction;
    settings.rangeInInputUnits = rangeInInputUnits;
    settings.nugget = nugget;
    settings.numNearestPoints = numNearestPoints;
    for (const py::handle& sill : sills)
        settings.sills.push_back(sillChoiceOf(sill));
    if (anisotropy)
        settings.anisotropy = Anisotropy(anisotropy->first, anisotropy->second);
    settings.units.areLogarithms = areLogarithms;
    settings.units.limits = {clamp.first, clamp.second};
    return settings;
}

py::list sillsOf(const DataSettings& settings)
{
    py::list sills;
    for (const SillChoice& choice : settings.sills)
        sills.append(toPython(choice));
    return sills;
}

} // namespace

void bindSettings(py::module_& module)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    py::class_<DataSettings>(module, "Settings")
        .def(py::init(&makeSettings), py::kw_only(), "duplicate_tolerance"_a = -1.0,
             "scale_factors"_a = std::vector<double>(), "drift_order"_a = 0, "range_fraction"_a = 1.0,
             "range_in_units"_a = py::none(), "nugget"_a = 0.0, "n_neighbors"_a = 0, "sills"_a = py::list(),
             "anisotropy"_a = py::none(), "log"_a = false, "clamp"_a = std::make_pair(-infinity, infinity))
        .def_readonly("duplicate_tolerance", &DataSettings::duplicateTolerance)
        .def_readonly("scale_factors", &DataSettings::scaleFactors)
        .def_readonly("drift_order", &DataSettings::driftOrder)
        .def_readonly("range_fraction", &DataSettings::rangeFraction)
        .def_readonly("range_in_units", &DataSettings::rangeInInputUnits)
        .def_readonly("nugget", &DataSettings::nugget)
        .def_readonly("n_neighbors", &DataSettings::numNearestPoints)
        .def_property_readonly("sills", &sillsOf)
        .def_property_readonly("anisotropy",
                               [](const DataSettings& settings) -> std::optional<std::pair<double, double>>
                               {
                                   if (!settings.anisotropy)
                                       return std::nullopt;
                                   return std::make_pair(settings.anisotropy->getRatio(),
                                                         settings.anisotropy->getAngle());
                               });
}

} // namespace krige::python
