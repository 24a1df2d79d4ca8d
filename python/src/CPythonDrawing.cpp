#include "CPythonDrawing.h"

#include <optional>

namespace StrokesetPython {

LibStrokeset::CStrokeset& CPythonDrawing::document() {
    if (m_busy) {
        throw std::runtime_error("the drawing is busy: an optimizer is running on it in another "
                                 "thread (only abort() and aborted may be used meanwhile)");
    }
    return m_document;
}

bool CPythonDrawing::runOptimizer(const Run& run, const py::object& progress) {
    LibStrokeset::CStrokeset& document = this->document();
    std::optional<py::error_already_set> failure;
    const auto report = [&](int stage, float percent) {
        py::gil_scoped_acquire lock;
        if (failure) {
            return;
        }
        try {
            if (PyErr_CheckSignals() != 0) {
                throw py::error_already_set();
            }
            if (!progress.is_none()) {
                progress(stage, percent);
            }
        } catch (py::error_already_set& error) {
            failure.emplace(std::move(error));
            document.setOptimizationAborted();
        }
    };
    m_busy = true;
    bool changed = false;
    {
        py::gil_scoped_release unlocked;
        try {
            changed = run(document, report);
        } catch (...) {
            py::gil_scoped_acquire lock;
            m_busy = false;
            throw;
        }
    }
    m_busy = false;
    if (failure) {
        throw std::move(*failure);
    }
    return changed;
}

} // namespace StrokesetPython
