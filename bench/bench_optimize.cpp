// optimize with every phase on, tolerance 0.05: the reference engine against the indexed one
// on every real drawing, and the indexed engine on sample drawings of 10k to 1M collections
// with the peak memory of the run.
//
// The reference engine is quadratic: on 50k_random_lines it runs for minutes. Filter it out
// (--benchmark_filter=-Reference) or run it alone when only the indexed figures are wanted.

#include <benchmark/benchmark.h>

#include <malloc.h>
#include <sys/resource.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>

#include <LibStrokeset/LibStrokeset.h>

#include "SampleDrawing.h"
#include "optimize/OptimizeCollections.h"

namespace {

using LibStrokeset::EOptimizerEngine;

constexpr float tolerance = 0.05f;

/// Forgets the process's peak memory so far, where the system allows it; false otherwise.
bool resetPeakMemory() {
    // Memory that an earlier, larger run freed would otherwise stay resident and count.
    malloc_trim(0);
    std::ofstream clear("/proc/self/clear_refs");
    clear << "5";
    return static_cast<bool>(clear.flush());
}

/// The peak resident memory in MiB: since the last reset, or since the process started.
double peakMemoryMiB() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) {
            return std::stod(line.substr(6)) / 1024.0; // kB
        }
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void optimizeOnce(benchmark::State& state, const std::vector<unsigned short>& words,
                  EOptimizerEngine engine) {
    const LibStrokeset::COptimizationParameters everything(tolerance, true, true, true, true, true,
                                                           true, true);
    LibStrokeset::COptimizationResults results;
    std::atomic<bool> aborted{false};
    unsigned int opcodes = 0;
    bool peakSinceLoad = false;
    double peak = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        peakSinceLoad = resetPeakMemory();
        LibStrokeset::CStrokeset document(words);
        state.ResumeTiming();
        LibStrokeset::optimizeCollections(
            document.getCollections(), aborted, everything, results, [](int, float) {}, engine);
        state.PauseTiming();
        peak = peakMemoryMiB();
        std::vector<unsigned short> out;
        opcodes = document.serialize(out, nullptr);
        state.ResumeTiming();
    }
    const double collections = results.startCollectionSize();
    state.counters["collections"] = collections;
    state.counters["perCollection"] = benchmark::Counter(
        collections, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["duplicates"] = results.duplicatedPaths();
    state.counters["joined"] = results.autojoinedPaths();
    state.counters["degenerate"] = results.degeneratedLines();
    state.counters["closed"] = results.closedSubpaths();
    state.counters["travelAfter"] = results.totalJumpDistanceAfterOptimization();
    state.counters["opcodesAfter"] = opcodes;
    // With the peak reset before loading, this is the drawing's and the run's own peak.
    state.counters[peakSinceLoad ? "peakMiB" : "processPeakMiB"] = peak;
}

const char* engineName(EOptimizerEngine engine) {
    return engine == EOptimizerEngine::eReference ? "Reference" : "Indexed";
}

/// Sample drawings of `collections` collections, as `strokeset_make_sample --collections`
/// writes them, with gaps and stray lines below the tolerance.
void BM_OptimizeSample(benchmark::State& state) {
    LibStrokeset::Sample::SOptions options;
    options.collections = static_cast<int>(state.range(0));
    options.gap = tolerance / 2.0f;
    options.strayLength = tolerance / 10.0f;
    optimizeOnce(state, LibStrokeset::Sample::makeDrawing(options), EOptimizerEngine::eIndexed);
}
BENCHMARK(BM_OptimizeSample)
    ->Name("BM_OptimizeSample/Indexed")
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

/// Both engines on every drawing found in the drawings folder.
int registerDrawings() {
    const std::filesystem::path folder(LIBSTROKESET_DRAWINGS_DIR);
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        if (entry.path().extension() != ".stk") {
            continue;
        }
        const std::string path = entry.path().string();
        for (EOptimizerEngine engine : {EOptimizerEngine::eReference, EOptimizerEngine::eIndexed}) {
            const std::string name = std::string("BM_OptimizeDrawing/") + engineName(engine) + "/" +
                                     entry.path().stem().string();
            benchmark::RegisterBenchmark(
                name.c_str(),
                [path, engine](benchmark::State& state) {
                    std::vector<unsigned short> words;
                    std::string message;
                    if (!LibStrokeset::CStrokeset::readStkFile(path, words, message)) {
                        state.SkipWithError(message.c_str());
                        return;
                    }
                    optimizeOnce(state, words, engine);
                })
                // The indexed runs are short: repeat them for a steadier figure.
                ->Iterations(engine == EOptimizerEngine::eReference ? 1 : 10)
                ->Unit(benchmark::kMillisecond);
        }
    }
    return 0;
}
const int drawingsRegistered = registerDrawings();

} // namespace
