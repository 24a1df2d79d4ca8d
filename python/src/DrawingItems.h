#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <LibStrokeset/CCollection.h>

// What iterating a drawing gives: each collection copied into NumPy arrays, so that an item
// stays as it was however the drawing changes or whenever it goes away.
namespace StrokesetPython {

namespace py = pybind11;

/// A sub-path: its first point and the end of every line.
struct SPathItem {
    py::array_t<float> points;         ///< (n, 3)
    py::array_t<unsigned short> pens;  ///< (n,)
    py::array_t<unsigned int> indices; ///< (n,)
    bool closed = false;
};

/// A run of dots.
struct SDotsItem {
    py::array_t<float> points;
    py::array_t<unsigned short> pens;
    py::array_t<unsigned int> indices;
};

/// A run of records carried through unchanged.
struct SRecordsItem {
    py::list records; ///< the words of each record, one array each
    py::array_t<unsigned int> indices;
};

/// The item of one collection: an SPathItem, SDotsItem or SRecordsItem.
py::object itemOf(const LibStrokeset::CCollection& collection);

/// Adds the item classes to the module.
void bindDrawingItems(py::module_& module);

} // namespace StrokesetPython
