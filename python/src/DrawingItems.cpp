#include "DrawingItems.h"

#include <vector>

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CSubPath.h>
#include <LibStrokeset/CUnsupportedElementCollection.h>

#include "Conversions.h"

namespace StrokesetPython {

namespace {

/// Points, pens and indices gathered side by side.
struct SPointColumns {
    std::vector<float> coordinates;
    std::vector<unsigned short> pens;
    std::vector<unsigned int> indices;

    void add(const Eigen::RowVector3f& position, unsigned short pen, unsigned int index) {
        coordinates.insert(coordinates.end(), {position.x(), position.y(), position.z()});
        pens.push_back(pen);
        indices.push_back(index);
    }
    template <typename TItem> void moveInto(TItem& item) {
        const auto count = static_cast<py::ssize_t>(pens.size());
        item.points = arrayOwning(std::move(coordinates), {count, 3});
        item.pens = arrayOwning(std::move(pens));
        item.indices = arrayOwning(std::move(indices));
    }
};

py::object pathItem(const LibStrokeset::CSubPath& path) {
    SPointColumns columns;
    for (const LibStrokeset::CLine& line : path) {
        if (columns.pens.empty()) {
            columns.add(line.getPosition(), line.getPenNumber(), line.getOpcodeIndex());
        }
        columns.add(line.getEndPosition(), line.getEndPenNumber(), line.getEndOpcodeIndex());
    }
    SPathItem item;
    item.closed = path.isClosed();
    columns.moveInto(item);
    return py::cast(std::move(item));
}

py::object dotsItem(const LibStrokeset::CDotCollection& dots) {
    SPointColumns columns;
    for (const LibStrokeset::CDot& dot : dots) {
        columns.add(dot.getPosition(), dot.getPenNumber(), dot.getOpcodeIndex());
    }
    SDotsItem item;
    columns.moveInto(item);
    return py::cast(std::move(item));
}

py::object recordsItem(const LibStrokeset::CUnsupportedElementCollection& records) {
    SRecordsItem item;
    std::vector<unsigned int> indices;
    for (const LibStrokeset::CUnsupportedElement& record : records.getElements()) {
        std::vector<unsigned short> words = record.getBinaryElementData();
        item.records.append(arrayOwning(std::move(words)));
        indices.push_back(record.getOpcodeIndex());
    }
    item.indices = arrayOwning(std::move(indices));
    return py::cast(std::move(item));
}

template <typename TItem>
py::class_<TItem> bindPoints(py::module_& module, const char* name, const char* doc) {
    return py::class_<TItem>(module, name, doc)
        .def_readonly("points", &TItem::points, "(n, 3) float32 positions")
        .def_readonly("pens", &TItem::pens, "(n,) uint16 pen of each point")
        .def_readonly("indices", &TItem::indices,
                      "(n,) uint32 opcode index of each point (NO_INDEX for new points)")
        .def("__len__", [](const TItem& item) { return item.pens.size(); });
}

} // namespace

py::object itemOf(const LibStrokeset::CCollection& collection) {
    if (const auto* path = dynamic_cast<const LibStrokeset::CSubPath*>(&collection)) {
        return pathItem(*path);
    }
    if (const auto* dots = dynamic_cast<const LibStrokeset::CDotCollection*>(&collection)) {
        return dotsItem(*dots);
    }
    return recordsItem(
        dynamic_cast<const LibStrokeset::CUnsupportedElementCollection&>(collection));
}

void bindDrawingItems(py::module_& module) {
    bindPoints<SPathItem>(module, "Path",
                          "A sub-path as it was when the drawing was iterated (a copy).")
        .def_property_readonly(
            "pen", [](const SPathItem& item) { return item.pens.size() ? item.pens.at(0) : 65535; },
            "The pen of the first point.")
        .def_readonly(
            "closed", &SPathItem::closed,
            "Whether the sub-path is closed: at least three lines, its last point on its first.")
        .def("__repr__", [](const SPathItem& item) {
            return "<strokeset.Path of " + std::to_string(item.pens.size()) + " points" +
                   (item.closed ? ", closed>" : ">");
        });
    bindPoints<SDotsItem>(module, "Dots",
                          "A run of dots as it was when the drawing was iterated (a copy).")
        .def("__repr__", [](const SDotsItem& item) {
            return "<strokeset.Dots of " + std::to_string(item.pens.size()) + " dots>";
        });
    py::class_<SRecordsItem>(module, "Records", "A run of records carried through unchanged.")
        .def_readonly("records", &SRecordsItem::records, "The words of each record")
        .def_readonly("indices", &SRecordsItem::indices, "(n,) uint32 opcode index of each record")
        .def("__len__", [](const SRecordsItem& item) { return item.records.size(); })
        .def("__repr__", [](const SRecordsItem& item) {
            return "<strokeset.Records of " + std::to_string(item.records.size()) + " records>";
        });
}

} // namespace StrokesetPython
