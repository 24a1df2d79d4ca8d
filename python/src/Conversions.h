#pragma once

#include <string>
#include <vector>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h> // every file alike: optionals and vectors become None and lists

#include <Eigen/Core>

// What Python hands the module, checked and turned into the library's types, and the
// library's vectors handed back as NumPy arrays. Wrong types raise TypeError, wrong shapes
// and values out of range raise ValueError, each message naming what was expected.
namespace StrokesetPython {

namespace py = pybind11;

/// A stream's words: a 1-D buffer of 16-bit unsigned integers (any byte order or stride),
/// or a sequence of ints from 0 to 65535.
std::vector<unsigned short> wordsFrom(const py::handle& words);

/// Opcode indices: a 1-D integer array or a sequence of ints from 0 to 4294967295.
std::vector<unsigned int> indicesFrom(const py::handle& indices);

/// One opcode index, 0 to 4294967295 (4294967295 stands for "none").
unsigned int indexFrom(long long index);

/// A pen number, 0 to 65535.
unsigned short penFrom(long long pen);

/// A point: three numbers x, y, z.
Eigen::RowVector3f pointFrom(const py::handle& point);

/// An affine map: a 3x4 matrix of numbers.
Eigen::Matrix<float, 3, 4> matrixFrom(const py::handle& matrix);

/// "key=value" lines for a device profile: a sequence of such strings, or a mapping whose
/// values are bools, numbers, strings or lists of numbers.
std::vector<std::string> profileOverridesFrom(const py::handle& overrides);

/// Hands the vector's memory to a new array, shaped as given (one dimension of its size when
/// `shape` is empty); the array owns it and shares nothing with any document.
template <typename T>
py::array_t<T> arrayOwning(std::vector<T>&& values, std::vector<py::ssize_t> shape = {}) {
    auto* owned = new std::vector<T>(std::move(values));
    py::capsule owner(owned, [](void* p) { delete static_cast<std::vector<T>*>(p); });
    if (shape.empty()) {
        shape.push_back(static_cast<py::ssize_t>(owned->size()));
    }
    return py::array_t<T>(shape, owned->data(), owner);
}

/// Issues a UserWarning; raises when warnings are turned into errors.
void warn(const std::string& message);

} // namespace StrokesetPython
