#include "Conversions.h"

#include <limits>

namespace StrokesetPython {

namespace {

std::string shapeText(const py::array& array) {
    std::string text = "(";
    for (py::ssize_t i = 0; i < array.ndim(); ++i) {
        text += (i == 0 ? "" : ", ") + std::to_string(array.shape(i));
    }
    return text + (array.ndim() == 1 ? ",)" : ")");
}

/// A Python int as a long long; ValueError (not OverflowError) for one that does not fit,
/// since to the caller it is just a value out of range.
long long integerFrom(const py::handle& item, const char* what) {
    PyObject* number = PyNumber_Index(item.ptr()); // ints, NumPy's integers, not floats
    if (number == nullptr) {
        PyErr_Clear();
        throw py::type_error(std::string(what) + " must be integers, not " +
                             py::str(py::type::of(item).attr("__name__")).cast<std::string>());
    }
    const py::object owned = py::reinterpret_steal<py::object>(number);
    int overflow = 0;
    const long long value = PyLong_AsLongLongAndOverflow(owned.ptr(), &overflow);
    if (overflow != 0) {
        throw py::value_error(std::string(what) + " " + py::str(item).cast<std::string>() +
                              " is out of range");
    }
    return value;
}

long long checkedRange(long long value, long long high, const char* what) {
    if (value < 0 || value > high) {
        throw py::value_error(std::string(what) + " " + std::to_string(value) + " is outside 0.." +
                              std::to_string(high));
    }
    return value;
}

/// Anything the buffer protocol or NumPy can read as an array; null for plain sequences.
py::object asArray(const py::handle& object) {
    if (py::isinstance<py::array>(object)) {
        return py::reinterpret_borrow<py::object>(object);
    }
    if (PyObject_CheckBuffer(object.ptr()) != 0) {
        return py::module_::import("numpy").attr("asarray")(object);
    }
    return py::none();
}

void requireOneDimension(const py::array& array, const char* what) {
    if (array.ndim() != 1) {
        throw py::value_error(std::string(what) + " must be one-dimensional, got shape " +
                              shapeText(array));
    }
}

std::string dtypeName(const py::array& array) { return py::str(array.dtype()).cast<std::string>(); }

/// Reads a sequence of ints one by one (lists and tuples).
std::vector<long long> integersFrom(const py::handle& sequence, long long high, const char* what,
                                    const char* one) {
    if (py::isinstance<py::str>(sequence) || !py::isinstance<py::sequence>(sequence)) {
        throw py::type_error(std::string(what) + " must be an array or a sequence of ints, not " +
                             py::str(py::type::of(sequence).attr("__name__")).cast<std::string>());
    }
    std::vector<long long> values;
    for (const py::handle item : py::reinterpret_borrow<py::sequence>(sequence)) {
        values.push_back(checkedRange(integerFrom(item, what), high, one));
    }
    return values;
}

/// Numbers of a point or matrix as doubles, with the shape checked.
py::array_t<double> numbersFrom(const py::handle& object, const std::vector<py::ssize_t>& shape,
                                const char* what, const char* expected) {
    py::array_t<double, py::array::c_style | py::array::forcecast> numbers;
    try {
        numbers = py::module_::import("numpy").attr("asarray")(object, "float64");
    } catch (py::error_already_set&) {
        throw py::type_error(std::string(what) + " must be numbers: " + expected);
    }
    bool same = numbers.ndim() == static_cast<py::ssize_t>(shape.size());
    for (std::size_t i = 0; same && i < shape.size(); ++i) {
        same = numbers.shape(static_cast<py::ssize_t>(i)) == shape[i];
    }
    if (!same) {
        throw py::value_error(std::string(what) + " must be " + expected + ", got shape " +
                              shapeText(numbers));
    }
    return numbers;
}

} // namespace

std::vector<unsigned short> wordsFrom(const py::handle& words) {
    const py::object object = asArray(words);
    if (object.is_none()) {
        std::vector<unsigned short> result;
        for (long long value : integersFrom(words, 65535, "words", "word")) {
            result.push_back(static_cast<unsigned short>(value));
        }
        return result;
    }
    const py::array array = object;
    if (array.dtype().kind() != 'u' || array.dtype().itemsize() != 2) { // bytes among them
        throw py::type_error("words must be 16-bit unsigned integers (numpy.uint16), not " +
                             dtypeName(array));
    }
    requireOneDimension(array, "words");
    // Byte order and strides are made native and contiguous here, by copy when needed.
    const auto native =
        py::array_t<unsigned short, py::array::c_style | py::array::forcecast>::ensure(array);
    return std::vector<unsigned short>(native.data(), native.data() + native.size());
}

std::vector<unsigned int> indicesFrom(const py::handle& indices) {
    const py::object object = asArray(indices);
    std::vector<unsigned int> result;
    const long long high = std::numeric_limits<unsigned int>::max();
    if (object.is_none()) {
        for (long long value : integersFrom(indices, high, "opcode indices", "opcode index")) {
            result.push_back(static_cast<unsigned int>(value));
        }
        return result;
    }
    const py::array array = object;
    requireOneDimension(array, "opcode indices");
    const char kind = array.dtype().kind();
    if (kind == 'u') {
        const auto values = py::array_t<unsigned long long, py::array::forcecast>::ensure(array);
        for (py::ssize_t i = 0; i < values.size(); ++i) {
            const unsigned long long value = values.at(i);
            result.push_back(static_cast<unsigned int>(checkedRange(
                value > static_cast<unsigned long long>(high) ? -1 : static_cast<long long>(value),
                high, "opcode index")));
        }
    } else if (kind == 'i') {
        const auto values = py::array_t<long long, py::array::forcecast>::ensure(array);
        for (py::ssize_t i = 0; i < values.size(); ++i) {
            result.push_back(
                static_cast<unsigned int>(checkedRange(values.at(i), high, "opcode index")));
        }
    } else {
        throw py::type_error("opcode indices must be integers, not " + dtypeName(array));
    }
    return result;
}

unsigned int indexFrom(long long index) {
    return static_cast<unsigned int>(
        checkedRange(index, std::numeric_limits<unsigned int>::max(), "opcode index"));
}

unsigned short penFrom(long long pen) {
    return static_cast<unsigned short>(checkedRange(pen, 65535, "pen"));
}

Eigen::RowVector3f pointFrom(const py::handle& point) {
    const py::array_t<double> numbers = numbersFrom(point, {3}, "a point", "3 numbers (x, y, z)");
    return Eigen::RowVector3f(static_cast<float>(numbers.at(0)), static_cast<float>(numbers.at(1)),
                              static_cast<float>(numbers.at(2)));
}

Eigen::Matrix<float, 3, 4> matrixFrom(const py::handle& matrix) {
    const py::array_t<double> numbers =
        numbersFrom(matrix, {3, 4}, "the matrix", "3x4 (an affine map of x, y, z)");
    Eigen::Matrix<float, 3, 4> result;
    for (py::ssize_t row = 0; row < 3; ++row) {
        for (py::ssize_t column = 0; column < 4; ++column) {
            result(row, column) = static_cast<float>(numbers.at(row, column));
        }
    }
    return result;
}

std::vector<std::string> profileOverridesFrom(const py::handle& overrides) {
    std::vector<std::string> lines;
    if (!py::isinstance<py::dict>(overrides)) {
        for (const py::handle item : overrides) {
            lines.push_back(py::cast<std::string>(item));
        }
        return lines;
    }
    const py::object toml = py::module_::import("json").attr("dumps"); // JSON scalars are TOML
    for (const auto& [key, value] : py::reinterpret_borrow<py::dict>(overrides)) {
        const bool usable = py::isinstance<py::bool_>(value) || py::isinstance<py::int_>(value) ||
                            py::isinstance<py::float_>(value) || py::isinstance<py::str>(value) ||
                            py::isinstance<py::list>(value) || py::isinstance<py::tuple>(value);
        if (!usable) {
            throw py::type_error("the profile key " + py::cast<std::string>(py::str(key)) +
                                 " takes a bool, a number, a string or a list of numbers");
        }
        lines.push_back(py::cast<std::string>(py::str(key)) + "=" +
                        py::cast<std::string>(toml(value)));
    }
    return lines;
}

void warn(const std::string& message) {
    if (PyErr_WarnEx(PyExc_UserWarning, message.c_str(), 1) != 0) {
        throw py::error_already_set();
    }
}

} // namespace StrokesetPython
