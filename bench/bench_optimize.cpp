// optimize with every phase on synthetic drawings of growing size and on real drawings.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include <LibStrokeset/LibStrokeset.h>

#include "SampleDrawing.h"

namespace {

constexpr float tolerance = 0.05f;

void optimizeOnce(benchmark::State& state, const std::vector<unsigned short>& words) {
    const LibStrokeset::COptimizationParameters everything(tolerance, true, true, true, true, true,
                                                           true, true);
    LibStrokeset::COptimizationResults results;
    unsigned int opcodes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        LibStrokeset::CStrokeset document(words);
        state.ResumeTiming();
        document.optimize(everything, results, [](int, float) {});
        state.PauseTiming();
        std::vector<unsigned short> out;
        opcodes = document.serialize(out, nullptr);
        state.ResumeTiming();
    }
    state.counters["collections"] = results.startCollectionSize();
    state.counters["duplicates"] = results.duplicatedPaths();
    state.counters["joined"] = results.autojoinedPaths();
    state.counters["degenerate"] = results.degeneratedLines();
    state.counters["closed"] = results.closedSubpaths();
    state.counters["travelBefore"] = results.totalJumpDistanceBeforeOptimization();
    state.counters["travelAfter"] = results.totalJumpDistanceAfterOptimization();
    state.counters["opcodesAfter"] = opcodes;
}

void BM_OptimizeSynthetic(benchmark::State& state) {
    LibStrokeset::Sample::SOptions options;
    options.collections = static_cast<int>(state.range(0));
    options.gap = tolerance / 2.0f;
    options.strayLength = tolerance / 10.0f;
    optimizeOnce(state, LibStrokeset::Sample::makeDrawing(options));
}
BENCHMARK(BM_OptimizeSynthetic)
    ->Arg(1000)
    ->Arg(4000)
    ->Arg(16000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

/// One benchmark per drawing found in the drawings folder.
int registerDrawings() {
    const std::filesystem::path folder(LIBSTROKESET_DRAWINGS_DIR);
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        if (entry.path().extension() != ".stk") {
            continue;
        }
        const std::string path = entry.path().string();
        benchmark::RegisterBenchmark(
            ("BM_OptimizeDrawing/" + entry.path().stem().string()).c_str(),
            [path](benchmark::State& state) {
                std::vector<unsigned short> words;
                std::string message;
                if (!LibStrokeset::CStrokeset::readStkFile(path, words, message)) {
                    state.SkipWithError(message.c_str());
                    return;
                }
                optimizeOnce(state, words);
            })
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    }
    return 0;
}
const int drawingsRegistered = registerDrawings();

} // namespace
