// Drawing: what a Python user reads off a drawing without addressing single points.

#include <LibStrokeset/Formats/DeviceProfile.h>
#include <LibStrokeset/Formats/DrawingSummary.h>
#include <LibStrokeset/Formats/MachineExport.h>

#include "Conversions.h"
#include "DrawingBindings.h"
#include "DrawingItems.h"

namespace StrokesetPython {

namespace {

using namespace py::literals;
namespace Formats = LibStrokeset::Formats;

py::tuple pointTuple(const Eigen::RowVector3f& p) { return py::make_tuple(p.x(), p.y(), p.z()); }

py::object boundsOf(const Formats::SDrawingSummary& summary) {
    if (!summary.hasBox) {
        return py::none();
    }
    return py::make_tuple(pointTuple(summary.low), pointTuple(summary.high));
}

/// The machine figures of info: what export would report under the profile.
py::dict machineFigures(LibStrokeset::CStrokeset& document, const std::string& profile,
                        const py::object& overrides) {
    const Formats::SProfileReading reading =
        Formats::loadDeviceProfile(profile, profileOverridesFrom(overrides));
    if (!reading.ok()) {
        throw py::value_error(reading.error);
    }
    const Formats::SMachineExport run = Formats::exportMachine(document, reading.profile);
    const Formats::SMachineEstimate& estimate = run.estimate;
    return py::dict("profile"_a = reading.profile.name,
                    "error"_a = run.ok() ? py::object(py::none()) : py::str(run.error),
                    "draw_length"_a = estimate.drawLength,
                    "travel_length"_a = estimate.travelLength, "pen_lifts"_a = estimate.penLifts,
                    "tool_changes"_a = estimate.toolChanges, "seconds"_a = estimate.seconds);
}

py::dict info(CPythonDrawing& self, const py::object& profile, const py::object& overrides) {
    LibStrokeset::CStrokeset& document = self.document();
    const Formats::SDrawingSummary s = Formats::summarizeDrawing(document);
    py::object box = py::none();
    if (s.hasBox) {
        box = py::dict("min"_a = pointTuple(s.low), "max"_a = pointTuple(s.high));
    }
    py::dict figures("collections"_a =
                         py::dict("sub_paths"_a = s.subPathCollections, "dots"_a = s.dotCollections,
                                  "unsupported"_a = s.recordCollections),
                     "points"_a = s.points, "sub_paths"_a = s.subPaths, "lines"_a = s.lines,
                     "dots"_a = s.dots, "unsupported_records"_a = s.records,
                     "pens"_a = py::cast(s.pens), "pen_changes"_a = s.penChanges,
                     "bounding_box"_a = box, "drawn_length"_a = s.drawnLength,
                     "travel_length"_a = s.travelLength);
    // As in the tool, overrides alone ask for the figures under the default profile.
    const bool machine = !profile.is_none() || py::len(overrides) > 0;
    figures["machine"] =
        machine ? py::object(machineFigures(
                      document, profile.is_none() ? "gcode-servo" : profile.cast<std::string>(),
                      overrides))
                : py::object(py::none());
    return figures;
}

} // namespace

void bindDrawingView(py::class_<CPythonDrawing>& drawing) {
    drawing
        .def(
            "__len__",
            [](CPythonDrawing& self) {
                return std::as_const(self.document()).getCollections().size();
            },
            "Number of collections.")
        .def(
            "__iter__",
            [](CPythonDrawing& self) {
                py::list items;
                for (const LibStrokeset::CCollection* collection :
                     std::as_const(self.document()).getCollections()) {
                    items.append(itemOf(*collection));
                }
                return py::iter(items);
            },
            "The collections in drawing order as Path, Dots and Records, each copied when the "
            "iteration starts.")
        .def_property_readonly(
            "bounds",
            [](CPythonDrawing& self) {
                return boundsOf(Formats::summarizeDrawing(self.document()));
            },
            "((xmin, ymin, zmin), (xmax, ymax, zmax)) of the points; None when there are none.")
        .def("info", &info, "profile"_a = py::none(), "overrides"_a = py::tuple(),
             "The figures of `strokeset info`: collections by kind, points, sub_paths, lines, "
             "dots, unsupported_records, pens, pen_changes, bounding_box, drawn_length, "
             "travel_length; with a profile also machine: draw_length, travel_length, "
             "pen_lifts, tool_changes, seconds.")
        .def_property_readonly(
            "opcode_count", [](CPythonDrawing& self) { return self.document().getOpcodeCount(); },
            "Numbered opcodes of the stream last loaded or serialized, plus those pasted since.")
        .def_property_readonly(
            "points_count", [](CPythonDrawing& self) { return self.document().getPointsCount(); },
            "Dots, sub-path points and records.")
        .def_property_readonly(
            "pen_change_count",
            [](CPythonDrawing& self) { return self.document().getPenChangeCount(); },
            "Pen change records serialize would write.")
        .def_property_readonly(
            "unsupported_count",
            [](CPythonDrawing& self) { return self.document().getUnsupportedOpcodeCount(); },
            "Records carried through unchanged.")
        .def(
            "shuffle", [](CPythonDrawing& self) { self.document().shuffle(); },
            "Puts every dot and collection into a random order.")
        .def(
            "simplify",
            [](CPythonDrawing& self, float tolerance) { self.document().simplify(tolerance); },
            "tolerance"_a, "Simplifies every sub-path within the tolerance.");
}

} // namespace StrokesetPython
