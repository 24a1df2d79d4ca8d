#pragma once

#include <pybind11/pybind11.h>

#include "CPythonDrawing.h"

namespace StrokesetPython {

/// Adds the index-addressed queries and commands of Drawing.
void bindEditing(py::class_<CPythonDrawing>& drawing);

} // namespace StrokesetPython
