// optimizeTravel against the nearest-neighbour order of optimize, on the real drawings and on
// generated ones: each switch alone and all three together, as ratios of pen-up travel.

#include <benchmark/benchmark.h>

#include <LibStrokeset/LibStrokeset.h>

#include <filesystem>
#include <string>
#include <vector>

#include "SampleDrawing.h"

namespace {

using LibStrokeset::CStrokeset;
using LibStrokeset::CTravelOptimizationParameters;
using LibStrokeset::CTravelOptimizationResults;

/// Long enough for the refinement to run out of moves on every drawing but the largest.
constexpr double refinementLimit = 120.0;

struct SVariant {
    const char* name;
    bool pens, closed, refine;
    double limit = refinementLimit;
    /// The whole optimize first, as the tool runs it, rather than its ordering alone.
    bool cleanUp = false;
};
const SVariant variants[] = {{"PensTogether", true, false, false},
                             {"ClosedStarts", false, true, false},
                             {"Refine", false, false, true},
                             {"Refine2s", false, false, true, 2.0, true},
                             {"All", true, true, true}};

/// Pen-up travel of a near-optimal tour of each shared drawing's items after optimize (open
/// paths entered at either end, closed paths at their first point), found by a separate
/// solver in minutes: what the refinement is measured against.
double nearOptimalTravel(const std::string& drawing) {
    const std::pair<const char*, double> known[] = {{"7k_lines", 14043.8},
                                                    {"50k_random_lines", 3240.7},
                                                    {"multi_skull", 26682.8},
                                                    {"500_polylines", 10060.6},
                                                    {"500_circles", 33292.8}};
    for (const auto& [name, travel] : known) {
        if (drawing == name) {
            return travel;
        }
    }
    return 0.0;
}

/// Orders the drawing as optimize does (no clean-up, so that the content stays, unless the
/// variant asks for it), then times optimizeTravel with the switches; travel figures are
/// relative to that order.
void travelOnce(benchmark::State& state, const std::vector<unsigned short>& words,
                const SVariant& variant, double nearOptimal = 0.0) {
    CTravelOptimizationResults results;
    for (auto _ : state) {
        state.PauseTiming();
        CStrokeset drawing(words);
        LibStrokeset::COptimizationResults ignored;
        // The tool's defaults: a tolerance of 0.05 and every phase.
        drawing.optimize(variant.cleanUp
                             ? LibStrokeset::COptimizationParameters(0.05f, true, true, true, true,
                                                                     true, true, true)
                             : LibStrokeset::COptimizationParameters(0.0f, false, false, false,
                                                                     false, false, false, true),
                         ignored, [](int, float) {});
        state.ResumeTiming();
        drawing.optimizeTravel(CTravelOptimizationParameters(variant.pens, variant.closed,
                                                             variant.refine, variant.limit),
                               results, [](int, float) {});
    }
    const double greedy = results.travelBefore();
    state.counters["greedyTravel"] = greedy;
    state.counters["travel"] = results.travelAfter();
    state.counters["ratioToGreedy"] = greedy > 0.0 ? results.travelAfter() / greedy : 1.0;
    if (nearOptimal > 0.0 && variant.cleanUp) {
        state.counters["ratioToNearOptimal"] = results.travelAfter() / nearOptimal;
    }
    state.counters["penChangesGreedy"] = results.penChangesBefore();
    state.counters["penChanges"] = results.penChangesAfter();
    state.counters["moves"] = static_cast<double>(results.appliedMoves());
    state.counters["rotated"] = results.rotatedPaths();
    state.counters["timedOut"] = results.refinementTimedOut() ? 1 : 0;
}

int registerDrawings() {
    std::error_code error;
    std::vector<std::filesystem::path> files;
    for (const auto& entry :
         std::filesystem::directory_iterator(LIBSTROKESET_DRAWINGS_DIR, error)) {
        if (entry.path().extension() == ".stk") {
            files.push_back(entry.path());
        }
    }
    files.push_back(std::filesystem::path(LIBSTROKESET_SAMPLE_STK));
    for (const std::filesystem::path& file : files) {
        std::vector<unsigned short> words;
        std::string message;
        if (!CStrokeset::readStkFile(file.string(), words, message)) {
            continue;
        }
        for (const SVariant& variant : variants) {
            const std::string name =
                std::string("BM_Travel/") + variant.name + "/" + file.stem().string();
            benchmark::RegisterBenchmark(
                name.c_str(),
                [words, variant, nearOptimal = nearOptimalTravel(file.stem().string())](
                    benchmark::State& state) { travelOnce(state, words, variant, nearOptimal); })
                ->Iterations(1)
                ->Unit(benchmark::kMillisecond);
        }
    }
    return 0;
}
const int drawingsRegistered = registerDrawings();

/// How the refinement's time grows with the size of generated drawings.
void BM_TravelRefineSample(benchmark::State& state) {
    LibStrokeset::Sample::SOptions options;
    options.collections = static_cast<int>(state.range(0));
    travelOnce(state, LibStrokeset::Sample::makeDrawing(options), variants[2]);
}
BENCHMARK(BM_TravelRefineSample)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
