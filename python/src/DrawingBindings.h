#pragma once

#include <pybind11/pybind11.h>

#include "CPythonDrawing.h"

namespace StrokesetPython {

/// Adds loading and writing (words, Stk, SVG, machine files) and the read-only view of
/// Drawing: len, iteration, bounds, info and the counts.
void bindDrawingFiles(py::class_<CPythonDrawing>& drawing);
void bindDrawingView(py::class_<CPythonDrawing>& drawing);

} // namespace StrokesetPython
