#pragma once

#include <functional>

#include <pybind11/pybind11.h>

#include <LibStrokeset/CStrokeset.h>

namespace StrokesetPython {

namespace py = pybind11;

/// The document behind a Python Drawing, with the one thing Python adds: while an optimizer
/// runs without the interpreter lock, every other call on the drawing is refused, so that no
/// second thread can touch the document under it. Only the abort flag stays reachable.
class CPythonDrawing {
public:
    /// The document, for a call made with the interpreter lock held; RuntimeError while an
    /// optimizer runs on it.
    LibStrokeset::CStrokeset& document();

    /// Asks a running optimizer to stop; safe from any thread, busy or not.
    void abort() { m_document.setOptimizationAborted(); }
    /// Whether the abort flag is set.
    bool aborted() { return m_document.isOptimizationAborted(); }

    /// An optimizer's run: gets the document and the progress function to pass on.
    using Run = std::function<bool(LibStrokeset::CStrokeset&, std::function<void(int, float)>)>;

    /// Calls `run` with the interpreter lock released and the drawing marked busy. The
    /// progress function it is given takes the lock back for each report: it calls
    /// `progress` (when not None) and lets pending signals (Ctrl-C) through. An exception
    /// from either aborts the run, and is raised again once the run has returned.
    bool runOptimizer(const Run& run, const py::object& progress);

private:
    LibStrokeset::CStrokeset m_document;
    bool m_busy = false; // read and written only with the interpreter lock held
};

} // namespace StrokesetPython
