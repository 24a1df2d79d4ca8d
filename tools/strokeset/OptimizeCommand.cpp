// strokeset optimize: the library's clean-up and travel ordering, with progress and Ctrl-C.

#include <cstdio>
#include <iostream>
#include <memory>
#include <string>

#include <unistd.h>

#include <LibStrokeset/Formats/DrawingWalk.h>

#include "Commands.h"
#include "DrawingCounts.h"
#include "ExitCodes.h"
#include "Files.h"
#include "Format.h"
#include "Interrupt.h"
#include "ProgressBar.h"

namespace Strokeset {

namespace {

using LibStrokeset::Formats::penUpTravel;

struct SOptimizeOptions {
    bool salvage = false;
    std::string input, output;
    float tolerance = 0.05f;
    bool noDuplicates = false, noReversedDuplicates = false;
    bool noJoin = false, noReversedJoin = false;
    bool noDegenerate = false, noClose = false, noOrdering = false;
    bool progress = false;
    bool pensTogether = false, closedStarts = false, innerFirst = false;
    double refine = -1.0; // seconds; below 0 when not asked for

    bool travelAsked() const { return pensTogether || closedStarts || innerFirst || refine >= 0.0; }
    LibStrokeset::CTravelOptimizationParameters travelParameters() const {
        return LibStrokeset::CTravelOptimizationParameters(pensTogether, closedStarts,
                                                           refine >= 0.0, refine, innerFirst);
    }

    LibStrokeset::COptimizationParameters parameters() const {
        return LibStrokeset::COptimizationParameters(
            tolerance, !noDuplicates, !noReversedDuplicates, !noJoin, !noReversedJoin,
            !noDegenerate, !noClose, !noOrdering);
    }
};

std::string row(const std::string& label, const std::string& value) {
    return label + std::string(label.size() < 26 ? 27 - label.size() : 1, ' ') + value + '\n';
}

/// "before -> after  (+-change%)", the numbers with `format`.
std::string beforeAfter(double before, double after, const char* format) {
    std::string text = formatNumber(format, before) + " -> " + formatNumber(format, after);
    if (before > 0.0) {
        text += "  (" + formatNumber("%+.1f%%", (after - before) / before * 100.0) + ")";
    }
    return text;
}

/// The drawing as info measures it, before and after the run: what the file held and what
/// is written.
struct SDrawingFigures {
    double travel = 0.0;
    unsigned int collections = 0;
    unsigned int penChanges = 0;

    static SDrawingFigures of(LibStrokeset::CStrokeset& drawing) {
        return {penUpTravel(drawing), writtenCollectionCount(drawing), drawing.getPenChangeCount()};
    }
};

/// The ordering phase measures travel only after the clean-up and skips the jumps around
/// opaque records, so its figures differ from the whole drawing's. Its "after" is the
/// nearest-neighbour order's, which is adopted only when shorter.
std::string orderingFigures(const SOptimizeOptions& options,
                            const LibStrokeset::COptimizationResults& r) {
    if (options.noOrdering) {
        return "off";
    }
    const float before = r.totalJumpDistanceBeforeOptimization();
    const float after = r.totalJumpDistanceAfterOptimization();
    return beforeAfter(before, after, "%.3f") + (after < before ? "" : ", order kept");
}

void printResults(const SOptimizeOptions& options, const LibStrokeset::COptimizationResults& r,
                  const SDrawingFigures& before, const SDrawingFigures& after) {
    std::cout << row("Removed duplicated paths", std::to_string(r.duplicatedPaths()))
              << row("Joined paths", std::to_string(r.autojoinedPaths()))
              << row("Removed degenerate lines", std::to_string(r.degeneratedLines()))
              << row("Closed paths", std::to_string(r.closedSubpaths()))
              << row("Collections", beforeAfter(before.collections, after.collections, "%.0f"))
              << row("Pen changes", beforeAfter(before.penChanges, after.penChanges, "%.0f"));
    std::cout << row("Pen-up travel", beforeAfter(before.travel, after.travel, "%.3f"))
              << row("Travel in ordering phase", orderingFigures(options, r))
              << row("Passes", std::to_string(r.passes()))
              << row("Time", std::to_string(r.elapsedTime()) + " ms");
}

/// The rows of the travel run that follows optimize when one of its switches is given.
void printTravelResults(const LibStrokeset::CTravelOptimizationResults& r) {
    std::cout << row("Travel run", beforeAfter(r.travelBefore(), r.travelAfter(), "%.3f"))
              << row("Travel run pen changes",
                     beforeAfter(r.penChangesBefore(), r.penChangesAfter(), "%.0f"))
              << row("Reversed paths", std::to_string(r.reversedPaths()))
              << row("Rotated closed paths", std::to_string(r.rotatedPaths()))
              << row("Refinement moves",
                     std::to_string(r.appliedMoves()) +
                         (r.refinementTimedOut() ? " (time limit reached)" : ""))
              << row("Travel run time", std::to_string(r.elapsedTime()) + " ms");
}

int runOptimize(const SOptimizeOptions& options) {
    installInterruptHandler();
    LibStrokeset::CStrokeset drawing;
    if (!loadDrawing(options.input, options.salvage, drawing)) {
        return exitBadInput;
    }
    const bool terminal = isatty(STDERR_FILENO) != 0;
    CProgressBar bar(terminal || options.progress, terminal);
    LibStrokeset::COptimizationResults results;
    const SDrawingFigures before = SDrawingFigures::of(drawing);
    setOptimizationToAbort(&drawing);
    // optimize clears the abort request when it starts, so a Ctrl-C that came before it is
    // looked at here and again afterwards.
    if (!interrupted()) {
        drawing.optimize(options.parameters(), results,
                         [&bar](int stage, float percent) { bar.show(stage, percent); });
    }
    LibStrokeset::CTravelOptimizationResults travelResults;
    if (options.travelAsked() && !interrupted()) {
        drawing.optimizeTravel(options.travelParameters(), travelResults,
                               [&bar](int stage, float percent) { bar.show(stage, percent); });
    }
    setOptimizationToAbort(nullptr);
    bar.finish();
    if (interrupted()) {
        std::cerr << "strokeset: interrupted; " << options.output << " was not written\n";
        return exitInterrupted;
    }
    const int status = saveDrawing(options.output, drawing);
    if (status == exitOk) {
        printResults(options, results, before, SDrawingFigures::of(drawing));
        if (options.travelAsked()) {
            printTravelResults(travelResults);
        }
    }
    return status;
}

} // namespace

void addOptimizeCommand(CLI::App& app, Job& job) {
    auto options = std::make_shared<SOptimizeOptions>();
    CLI::App* command =
        app.add_subcommand("optimize", "Clean up a drawing and reorder it to cut pen-up travel");
    command->add_option("IN", options->input, "Stk file to optimize")->required();
    addSalvageFlag(*command, options->salvage);
    command->add_option("OUT", options->output, "Stk file to write (may be IN)")->required();
    command
        ->add_option("--tolerance", options->tolerance,
                     "Points closer than this match, in drawing units")
        ->check(checkTolerance)
        ->capture_default_str();
    command->add_flag("--no-duplicates", options->noDuplicates, "Keep duplicated paths");
    command->add_flag("--no-reversed-duplicates", options->noReversedDuplicates,
                      "Keep paths that duplicate another one drawn backwards");
    command->add_flag("--no-join", options->noJoin,
                      "Do not join a path to one that starts where it ends");
    command->add_flag("--no-reversed-join", options->noReversedJoin,
                      "Do not join paths that meet end to end or start to start");
    command->add_flag("--no-degenerate", options->noDegenerate,
                      "Keep lines shorter than the tolerance");
    command->add_flag("--no-close", options->noClose, "Leave almost closed paths open");
    command->add_flag("--no-ordering", options->noOrdering,
                      "Keep the order; do not reorder to cut pen-up travel");
    command->add_flag("--pens-together", options->pensTogether,
                      "Afterwards draw pen by pen, changing to each pen once");
    command->add_flag("--closed-starts", options->closedStarts,
                      "Afterwards enter each closed path where the travel is shortest");
    command->add_flag("--inner-first", options->innerFirst,
                      "Afterwards draw every closed path inside another one before it (holes "
                      "before outlines, for cutting)");
    command
        ->add_option("--refine", options->refine,
                     "Afterwards improve the order for at most SECONDS (counted from the start "
                     "of that run)")
        ->option_text("SECONDS")
        ->check(checkSeconds);
    command->add_flag("--progress", options->progress,
                      "Report progress even when standard error is not a terminal");
    command->footer(R"(All phases are on by default: remove duplicated paths (also when drawn
backwards), join paths whose ends meet within the tolerance, remove lines
shorter than the tolerance, close paths whose ends nearly meet, and reorder
paths and dots to cut pen-up travel. A table of what was done follows.
--pens-together, --closed-starts, --inner-first and --refine run a second
reordering after these phases, which never lengthens the travel within a pen and
keeps unsupported records in place; its figures follow the table. With
--inner-first a closed path inside another closed path (at any depth) is drawn
first, as lasers and knives need: the other switches shorten the travel within
that rule, and an order that breaks it is reordered even at the cost of travel.
Ctrl-C stops the run: nothing is written and the exit status is 130.)");
    command->callback([options, &job] { job = [options] { return runOptimize(*options); }; });
}

} // namespace Strokeset
