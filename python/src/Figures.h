#ifndef FENN_PYTHON_FIGURES_H
#define FENN_PYTHON_FIGURES_H

#include <pybind11/pybind11.h>

#include "analysis/Calibration.h"
#include "analysis/ErrorStatistics.h"

namespace krige::python
{

/// The errors of one output by the names that Python uses: rmse, mae, bias, r2, msse, crps, coverage and others.
pybind11::dict figuresOf(const fenn::analysis::ErrorStatistics& errors, const fenn::analysis::Calibration& calibration);

} // namespace krige::python

#endif
