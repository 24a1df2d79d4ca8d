#include "OptimizeBindings.h"

#include <LibStrokeset/COptimizationParameters.h>
#include <LibStrokeset/COptimizationResults.h>
#include <LibStrokeset/CTravelOptimizationParameters.h>
#include <LibStrokeset/CTravelOptimizationResults.h>

namespace StrokesetPython {

namespace {

/// What optimize did, as Python reads it.
struct SOptimizeResults {
    bool changed = false;
    bool aborted = false;
    LibStrokeset::COptimizationResults results;
};

/// What optimize_travel did, as Python reads it.
struct STravelResults {
    bool changed = false;
    bool aborted = false;
    LibStrokeset::CTravelOptimizationResults results;
};

/// A read-only attribute from a getter of the library's results.
template <typename TPython, typename TValue, typename TResults>
void field(py::class_<TPython>& type, const char* name, TValue (TResults::*getter)() const,
           const char* doc) {
    type.def_property_readonly(
        name, [getter](const TPython& self) { return (self.results.*getter)(); }, doc);
}

/// as_dict and __repr__ from the attributes named.
template <typename TPython>
void dictAndRepr(py::class_<TPython>& type, const char* typeName, std::vector<const char*> names) {
    names.insert(names.begin(), {"changed", "aborted"});
    type.def_readonly("changed", &TPython::changed, "Whether the run changed the drawing")
        .def_readonly("aborted", &TPython::aborted, "Whether the run was asked to stop");
    type.def(
        "as_dict",
        [names](const py::object& self) {
            py::dict values;
            for (const char* name : names) {
                values[name] = self.attr(name);
            }
            return values;
        },
        "The attributes as a dict.");
    type.def("__repr__", [typeName, names](const py::object& self) {
        std::string text = std::string(typeName) + "(";
        for (const char* name : names) {
            text += (text.back() == '(' ? "" : ", ") + std::string(name) + "=" +
                    py::repr(self.attr(name)).cast<std::string>();
        }
        return text + ")";
    });
}

void bindOptimizeResults(py::module_& module) {
    using R = LibStrokeset::COptimizationResults;
    py::class_<SOptimizeResults> type(module, "OptimizeResults", "What an optimize run did.");
    field(type, "passes", &R::passes, "Phase passes run");
    field(type, "estimated_runs", &R::estimatedRuns, "The phases' estimates of their steps");
    field(type, "performed_runs", &R::performedRuns, "The steps the phases took");
    field(type, "start_collection_size", &R::startCollectionSize, "Collections at the start");
    field(type, "end_collection_size", &R::endCollectionSize,
          "Collections after duplicate removal and joining");
    field(type, "duplicated_paths", &R::duplicatedPaths, "Sub-paths removed as duplicates");
    field(type, "autojoined_paths", &R::autojoinedPaths, "Sub-paths joined onto another");
    field(type, "degenerated_lines", &R::degeneratedLines, "Lines shorter than the tolerance");
    field(type, "closed_subpaths", &R::closedSubpaths, "Sub-paths snapped shut");
    field(type, "travel_before", &R::totalJumpDistanceBeforeOptimization,
          "Pen-up travel before the reordering; 0 when it did not run");
    field(type, "travel_after", &R::totalJumpDistanceAfterOptimization,
          "Pen-up travel of the new order; 0 when it did not run");
    field(type, "elapsed_ms", &R::elapsedTime, "Duration in milliseconds");
    dictAndRepr(type, "OptimizeResults",
                {"passes", "estimated_runs", "performed_runs", "start_collection_size",
                 "end_collection_size", "duplicated_paths", "autojoined_paths", "degenerated_lines",
                 "closed_subpaths", "travel_before", "travel_after", "elapsed_ms"});
}

void bindTravelResults(py::module_& module) {
    using R = LibStrokeset::CTravelOptimizationResults;
    py::class_<STravelResults> type(module, "TravelResults", "What an optimize_travel run did.");
    field(type, "travel_before", &R::travelBefore, "Pen-up travel before the run");
    field(type, "travel_after", &R::travelAfter, "Pen-up travel after the run");
    field(type, "pen_changes_before", &R::penChangesBefore, "Pen changes before the run");
    field(type, "pen_changes_after", &R::penChangesAfter, "Pen changes after the run");
    field(type, "reversed_paths", &R::reversedPaths, "Sub-paths that now run the other way");
    field(type, "rotated_paths", &R::rotatedPaths, "Closed sub-paths that now start elsewhere");
    field(type, "applied_moves", &R::appliedMoves, "Refinement moves applied");
    field(type, "refinement_timed_out", &R::refinementTimedOut,
          "Whether the refinement stopped at its time limit");
    field(type, "elapsed_ms", &R::elapsedTime, "Duration in milliseconds");
    dictAndRepr(type, "TravelResults",
                {"travel_before", "travel_after", "pen_changes_before", "pen_changes_after",
                 "reversed_paths", "rotated_paths", "applied_moves", "refinement_timed_out",
                 "elapsed_ms"});
}

SOptimizeResults optimize(CPythonDrawing& drawing,
                          const LibStrokeset::COptimizationParameters& parameters,
                          const py::object& progress) {
    SOptimizeResults out;
    out.changed = drawing.runOptimizer(
        [&](LibStrokeset::CStrokeset& document, std::function<void(int, float)> report) {
            return document.optimize(parameters, out.results, std::move(report));
        },
        progress);
    out.aborted = drawing.aborted();
    return out;
}

STravelResults optimizeTravel(CPythonDrawing& drawing,
                              const LibStrokeset::CTravelOptimizationParameters& parameters,
                              const py::object& progress) {
    STravelResults out;
    out.changed = drawing.runOptimizer(
        [&](LibStrokeset::CStrokeset& document, std::function<void(int, float)> report) {
            return document.optimizeTravel(parameters, out.results, std::move(report));
        },
        progress);
    out.aborted = drawing.aborted();
    return out;
}

} // namespace

void bindOptimizers(py::module_& module, py::class_<CPythonDrawing>& drawing) {
    bindOptimizeResults(module);
    bindTravelResults(module);
    using namespace py::literals;
    drawing
        .def(
            "optimize",
            [](CPythonDrawing& self, float tolerance, bool duplicates, bool reversedDuplicates,
               bool join, bool reversedJoin, bool degenerate, bool close, bool order,
               const py::object& progress) {
                return optimize(self,
                                LibStrokeset::COptimizationParameters(
                                    tolerance, duplicates, reversedDuplicates, join, reversedJoin,
                                    degenerate, close, order),
                                progress);
            },
            "tolerance"_a = 0.05f, "remove_duplicated_paths"_a = true,
            "remove_duplicated_reversed_paths"_a = true, "autojoin_paths"_a = true,
            "autojoin_reversed_paths"_a = true, "remove_degenerated_lines"_a = true,
            "close_subpaths"_a = true, "minimize_jump_distances"_a = true,
            "progress"_a = py::none(),
            "Removes duplicated paths and short lines, joins paths whose ends meet, closes "
            "almost closed paths and reorders to cut pen-up travel. Releases the interpreter "
            "lock; abort() from another thread stops it. An exception raised by progress(stage, "
            "percent) aborts the run and is raised again once it has stopped. Serialize before "
            "addressing points by index again.")
        .def(
            "optimize_travel",
            [](CPythonDrawing& self, bool pensTogether, bool closedStarts, bool refine,
               double timeLimit, bool innerFirst, const py::object& progress) {
                return optimizeTravel(
                    self,
                    LibStrokeset::CTravelOptimizationParameters(pensTogether, closedStarts, refine,
                                                                timeLimit, innerFirst),
                    progress);
            },
            "pens_together"_a = false, "closed_starts"_a = false, "refine"_a = false,
            "time_limit"_a = 10.0, "inner_first"_a = false, "progress"_a = py::none(),
            "Shortens pen-up travel without changing what is drawn: pens together, closed paths "
            "entered at their best point, a refinement of up to time_limit seconds, holes before "
            "the outlines around them. Runs as optimize does; an aborted run leaves the drawing "
            "as it was.")
        .def("abort", &CPythonDrawing::abort,
             "Asks a running optimizer on another thread to stop; safe from any thread.")
        .def_property_readonly("aborted", &CPythonDrawing::aborted,
                               "Whether the abort flag is set (it stays set after an aborted "
                               "run until the next one).");
}

} // namespace StrokesetPython
