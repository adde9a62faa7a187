#include "python/src/Figures.h"

namespace krige::python
{

namespace py = pybind11;
using namespace pybind11::literals;

py::dict figuresOf(const fenn::analysis::ErrorStatistics& errors, const fenn::analysis::Calibration& calibration)
{
    py::dict coverage; // nominal fraction of each interval to the one that it held
    for (const fenn::analysis::IntervalCoverage& interval : calibration.coverages)
        coverage[py::float_(interval.nominal)] = interval.actual;
    return py::dict("n_compared"_a = errors.numCompared, "n_missing"_a = errors.numMissing, "rmse"_a = errors.rmse,
                    "mae"_a = errors.mae, "bias"_a = errors.bias, "r2"_a = errors.r2,
                    "worst_error"_a = errors.worstError, "msse"_a = calibration.meanSquaredStandardisedError,
                    "crps"_a = calibration.crps, "coverage"_a = coverage);
}

} // namespace krige::python
