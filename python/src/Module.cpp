// The strokeset module: LibStrokeset's drawings for Python, with NumPy arrays.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <LibStrokeset/CDrawingElement.h>
#include <LibStrokeset/EOpcodeType.h>
#include <LibStrokeset/Formats/DeviceProfile.h>

#include "CPythonDrawing.h"
#include "DrawingBindings.h"
#include "DrawingItems.h"
#include "EditingBindings.h"
#include "OptimizeBindings.h"

namespace py = pybind11;

PYBIND11_MODULE(strokeset, module) {
    using namespace StrokesetPython;
    module.doc() = "Holds, edits and optimizes vector drawings for plotters, cutters and lasers. "
                   "A drawing is a stream of 16-bit words; its points are addressed by opcode "
                   "index, the ordinal of their record in the stream last loaded or serialized.";
    module.attr("NO_INDEX") = LibStrokeset::CElement::noIndex;
    module.attr("NO_PEN") = LibStrokeset::CDrawingElement::noPen;
    py::enum_<LibStrokeset::EOpcodeType>(module, "OpcodeType",
                                         "Kind of the element that holds an opcode index.")
        .value("UNSUPPORTED", LibStrokeset::eUnsupported)
        .value("SUBPATH_START", LibStrokeset::eSubPathStart)
        .value("SUBPATH_POINT", LibStrokeset::eSubPathPoint)
        .value("SUBPATH_END", LibStrokeset::eSubPathEnd)
        .value("DOT", LibStrokeset::eDot)
        .value("NONE", LibStrokeset::eNone);
    bindDrawingItems(module);

    py::class_<CPythonDrawing> drawing(
        module, "Drawing",
        "A drawing: collections (sub-paths, runs of dots, runs of records) in drawing order. "
        "While optimize or optimize_travel runs (without the interpreter lock), every call on "
        "the same drawing but abort() and aborted raises RuntimeError.");
    bindDrawingFiles(drawing);
    bindDrawingView(drawing);
    bindEditing(drawing);
    bindOptimizers(module, drawing);

    module.def("device_profiles", &LibStrokeset::Formats::builtInDeviceProfiles,
               "The names of the built-in device profiles.");
}
