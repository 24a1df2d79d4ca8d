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
};
const SVariant variants[] = {{"PensTogether", true, false, false},
                             {"ClosedStarts", false, true, false},
                             {"Refine", false, false, true},
                             {"All", true, true, true}};

/// Orders the drawing as optimize does (no clean-up, so that the content stays), then
/// times optimizeTravel with the switches; travel figures are relative to that order.
void travelOnce(benchmark::State& state, const std::vector<unsigned short>& words,
                const SVariant& variant) {
    CTravelOptimizationResults results;
    for (auto _ : state) {
        state.PauseTiming();
        CStrokeset drawing(words);
        LibStrokeset::COptimizationResults ignored;
        drawing.optimize(LibStrokeset::COptimizationParameters(0.0f, false, false, false, false,
                                                               false, false, true),
                         ignored, [](int, float) {});
        state.ResumeTiming();
        drawing.optimizeTravel(CTravelOptimizationParameters(variant.pens, variant.closed,
                                                             variant.refine, refinementLimit),
                               results, [](int, float) {});
    }
    const double greedy = results.travelBefore();
    state.counters["greedyTravel"] = greedy;
    state.counters["travel"] = results.travelAfter();
    state.counters["ratioToGreedy"] = greedy > 0.0 ? results.travelAfter() / greedy : 1.0;
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
                [words, variant](benchmark::State& state) { travelOnce(state, words, variant); })
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
