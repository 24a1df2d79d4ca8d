#pragma once

#include <pybind11/pybind11.h>

#include "CPythonDrawing.h"

namespace StrokesetPython {

/// Adds OptimizeResults, TravelResults and the optimizer methods of Drawing.
void bindOptimizers(py::module_& module, py::class_<CPythonDrawing>& drawing);

} // namespace StrokesetPython
