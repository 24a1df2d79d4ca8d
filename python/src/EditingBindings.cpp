#include "EditingBindings.h"

#include <optional>
#include <vector>

#include <LibStrokeset/CElement.h>

#include "Conversions.h"

namespace StrokesetPython {

namespace {

using LibStrokeset::CStrokeset;
using namespace py::literals;

/// A command of one index: the library's bool answer.
void indexCommand(py::class_<CPythonDrawing>& drawing, const char* name,
                  bool (CStrokeset::*command)(unsigned int), const char* doc) {
    drawing.def(
        name,
        [command](CPythonDrawing& self, long long index) {
            return (self.document().*command)(indexFrom(index));
        },
        "index"_a, doc);
}

/// A command of two indices.
void pairCommand(py::class_<CPythonDrawing>& drawing, const char* name,
                 bool (CStrokeset::*command)(unsigned int, unsigned int), const char* first,
                 const char* second, const char* doc) {
    drawing.def(
        name,
        [command](CPythonDrawing& self, long long a, long long b) {
            return (self.document().*command)(indexFrom(a), indexFrom(b));
        },
        py::arg(first), py::arg(second), doc);
}

/// A command of one index and one point.
void pointCommand(py::class_<CPythonDrawing>& drawing, const char* name,
                  bool (CStrokeset::*command)(unsigned int, Eigen::RowVector3f&), const char* doc) {
    drawing.def(
        name,
        [command](CPythonDrawing& self, long long index, const py::object& position) {
            Eigen::RowVector3f point = pointFrom(position);
            return (self.document().*command)(indexFrom(index), point);
        },
        "index"_a, "position"_a, doc);
}

void bindQueries(py::class_<CPythonDrawing>& drawing) {
    drawing
        .def(
            "get_position",
            [](CPythonDrawing& self, long long index) -> std::optional<py::array_t<float>> {
                Eigen::RowVector3f position;
                if (!self.document().getPosition(indexFrom(index), position)) {
                    return std::nullopt;
                }
                return arrayOwning(std::vector<float>{position.x(), position.y(), position.z()});
            },
            "index"_a,
            "The point's (x, y, z) as a float32 array; None when no point has the index.")
        .def(
            "get_pen",
            [](CPythonDrawing& self, long long index) -> std::optional<unsigned short> {
                unsigned short pen = 0;
                if (!self.document().getPenNumber(indexFrom(index), pen)) {
                    return std::nullopt;
                }
                return pen;
            },
            "index"_a, "The point's pen; None when no point has the index.")
        .def(
            "opcode_type",
            [](CPythonDrawing& self, long long index) {
                return self.document().getOpcodeType(indexFrom(index));
            },
            "index"_a, "The kind of element that holds the index.")
        .def(
            "opcode_types",
            [](CPythonDrawing& self) -> std::optional<py::array_t<unsigned char>> {
                std::vector<LibStrokeset::EOpcodeType> types;
                if (!self.document().getOpcodeTypes(types)) {
                    return std::nullopt;
                }
                return arrayOwning(std::vector<unsigned char>(types.begin(), types.end()));
            },
            "The OpcodeType of every index below the opcode count as uint8; None while an edit "
            "has added points that have no index yet.")
        .def(
            "collection_index_of_point",
            [](CPythonDrawing& self, long long index) -> std::optional<unsigned int> {
                const unsigned int position =
                    self.document().getCollectionIndexOfPoint(indexFrom(index));
                return position == LibStrokeset::CElement::noIndex
                           ? std::nullopt
                           : std::optional<unsigned int>(position);
            },
            "index"_a, "The list position of the collection that holds the index; None for none.");
}

void bindPointEdits(py::class_<CPythonDrawing>& drawing) {
    pointCommand(drawing, "set_position", &CStrokeset::setPosition,
                 "Moves the point with the index; False when no point has it.");
    drawing
        .def(
            "set_pen",
            [](CPythonDrawing& self, long long index, long long pen) {
                unsigned short number = penFrom(pen);
                return self.document().setPenNumber(indexFrom(index), number);
            },
            "index"_a, "pen"_a, "Sets the point's pen; False when no point has the index.")
        .def(
            "transform_point",
            [](CPythonDrawing& self, long long index, const py::object& matrix) {
                Eigen::Matrix<float, 3, 4> map = matrixFrom(matrix);
                return self.document().transformPoint(indexFrom(index), map);
            },
            "index"_a, "matrix"_a, "Maps the point by a 3x4 affine matrix.")
        .def(
            "transform_points",
            [](CPythonDrawing& self, const py::object& indices, const py::object& matrix) {
                Eigen::Matrix<float, 3, 4> map = matrixFrom(matrix);
                return self.document().transformPoints(indicesFrom(indices), map);
            },
            "indices"_a, "matrix"_a,
            "Maps every listed point by a 3x4 affine matrix; False when an index names no point.")
        .def(
            "transform",
            [](CPythonDrawing& self, const py::object& matrix) {
                Eigen::Matrix<float, 3, 4> map = matrixFrom(matrix);
                return self.document().transform(map);
            },
            "matrix"_a,
            "Maps every point; False when the drawing holds records (every point is mapped).")
        .def(
            "delete_point",
            [](CPythonDrawing& self, long long index) {
                return self.document().deletePoint(indexFrom(index));
            },
            "index"_a, "Deletes the point; its index becomes a gap until the next serialize.")
        .def(
            "delete_points",
            [](CPythonDrawing& self, const py::object& indices) {
                return self.document().deletePoints(indicesFrom(indices));
            },
            "indices"_a, "Deletes every listed point; False when an index names no point.")
        .def(
            "change_pen",
            [](CPythonDrawing& self, const py::object& indices, long long pen) {
                return self.document().changePen(indicesFrom(indices), penFrom(pen));
            },
            "indices"_a, "pen"_a, "Sets the pen of every listed point.")
        .def(
            "copy",
            [](CPythonDrawing& self,
               const py::object& indices) -> std::optional<py::array_t<unsigned short>> {
                std::vector<unsigned short> words;
                if (!self.document().copy(indicesFrom(indices), words)) {
                    return std::nullopt;
                }
                return arrayOwning(std::move(words));
            },
            "indices"_a,
            "The selected points as a new stream, ready for paste; None when the copy fails.");
}

void bindLineDrawing(py::class_<CPythonDrawing>& drawing) {
    pointCommand(drawing, "insert_dot", &CStrokeset::insertDot,
                 "Puts a new dot after the point with the index.");
    pointCommand(drawing, "prepend_line", &CStrokeset::prependLine,
                 "Puts a line from the position before the sub-path whose first point has the "
                 "index, or ends a new line at the dot with the index.");
    pointCommand(drawing, "insert_line_point", &CStrokeset::insertLinePoint,
                 "Puts a new point into a sub-path after the point with the index.");
    drawing
        .def(
            "new_dot",
            [](CPythonDrawing& self, const py::object& position) {
                Eigen::RowVector3f point = pointFrom(position);
                return self.document().newDot(point);
            },
            "position"_a, "Appends a dot with the current pen.")
        .def(
            "new_line",
            [](CPythonDrawing& self, const py::object& start, const py::object& end) {
                Eigen::RowVector3f from = pointFrom(start);
                Eigen::RowVector3f to = pointFrom(end);
                return self.document().newLine(from, to);
            },
            "start"_a, "end"_a, "Appends a sub-path of one line with the current pen.")
        .def(
            "append_line",
            [](CPythonDrawing& self, const py::object& position, long long index) {
                Eigen::RowVector3f point = pointFrom(position);
                return self.document().appendLine(indexFrom(index), point);
            },
            "position"_a, "index"_a = static_cast<long long>(LibStrokeset::CElement::noIndex),
            "Extends the sub-path whose first point has the index by a line to the position, "
            "or the drawing's last point when the index is NO_INDEX.")
        .def(
            "insert_line",
            [](CPythonDrawing& self, long long index, const py::object& start,
               const py::object& end) {
                Eigen::RowVector3f from = pointFrom(start);
                Eigen::RowVector3f to = pointFrom(end);
                return self.document().insertLine(indexFrom(index), from, to);
            },
            "index"_a, "start"_a, "end"_a,
            "Puts a new one-line sub-path after the collection whose last opcode has the index.");
}

void bindSubpathCommands(py::class_<CPythonDrawing>& drawing) {
    indexCommand(drawing, "close_subpath", &CStrokeset::closeSubpath,
                 "Closes the sub-path whose first point has the index.");
    indexCommand(drawing, "open_subpath", &CStrokeset::openSubpath,
                 "Cuts out the segment leaving the inner point with the index.");
    indexCommand(drawing, "split_subpath", &CStrokeset::splitSubpath,
                 "Cuts the sub-path at the inner point with the index into two.");
    indexCommand(drawing, "reverse_subpath", &CStrokeset::reverseSubpathDirection,
                 "Reverses the sub-path whose first point has the index.");
    pairCommand(drawing, "join_subpath", &CStrokeset::joinSubpath, "end_index", "start_index",
                "Joins the sub-path starting at start_index onto the one ending at end_index, "
                "the two points becoming their midpoint.");
    pairCommand(drawing, "connect_subpath", &CStrokeset::connectSubpath, "end_index", "start_index",
                "Appends the sub-path starting at start_index to the one ending at end_index, "
                "with a bridging line when the points differ.");
    pairCommand(drawing, "set_closed_subpath_start", &CStrokeset::setClosedSubpathStart,
                "start_index", "new_start_index",
                "Makes another point the start of a closed sub-path.");
    indexCommand(drawing, "collection_make_first", &CStrokeset::collectionMakeFirst,
                 "Moves the collection whose first opcode has the index to the front.");
    indexCommand(drawing, "collection_make_last", &CStrokeset::collectionMakeLast,
                 "Moves the collection whose first opcode has the index to the end.");
    indexCommand(drawing, "collection_move_down", &CStrokeset::collectionMoveDown,
                 "Exchanges the collection whose first opcode has the index with the next.");
    indexCommand(drawing, "collection_move_up", &CStrokeset::collectionMoveUp,
                 "Exchanges the collection whose first opcode has the index with the one before.");
}

} // namespace

void bindEditing(py::class_<CPythonDrawing>& drawing) {
    bindQueries(drawing);
    bindPointEdits(drawing);
    bindLineDrawing(drawing);
    bindSubpathCommands(drawing);
}

} // namespace StrokesetPython
