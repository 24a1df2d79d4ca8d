// Commands over large selections. On 50k_random_lines (50,000 two-point lines) each command
// runs both as the library runs it (/onepass) and in its one-at-a-time form with the walk over
// the list per index (/walk, one iteration: it takes seconds); the same for the edits inside a
// long sub-path and a long dot run. transformPoints of every index on generated drawings of
// 10k to 1M collections shows how the cost grows.

#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <LibStrokeset/LibStrokeset.h>

#include "SampleDrawing.h"
#include "SelectionOracle.h"
#include "StreamBuilder.h"
#include "elements/NamedElementRemoval.h"

namespace {

using LibStrokeset::CStrokeset;
using Words = std::vector<unsigned short>;
using Indices = std::vector<unsigned int>;

/// The drawing's words, read once; null when the file is missing.
const Words* randomLines() {
    static const std::unique_ptr<Words> words = [] {
        auto read = std::make_unique<Words>();
        std::string message;
        const std::string file = std::string(LIBSTROKESET_DRAWINGS_DIR) + "/50k_random_lines.stk";
        return CStrokeset::readStkFile(file, *read, message) ? std::move(read) : nullptr;
    }();
    return words.get();
}

/// 0, step, 2 step, ... below count.
Indices everyIndex(unsigned int count, unsigned int step) {
    Indices indices;
    for (unsigned int i = 0; i < count; i += step) {
        indices.push_back(i);
    }
    return indices;
}

test::Matrix shift() {
    test::Matrix matrix;
    matrix << 1, 0, 0, 0.5f, 0, 1, 0, -0.25f, 0, 0, 1, 0;
    return matrix;
}

enum class ECommand { copy, transformPoints, changePen, deletePoints };

bool run(CStrokeset& document, ECommand command, const Indices& indices, bool walk) {
    Words words;
    std::string printed;
    test::Matrix matrix = shift();
    switch (command) {
    case ECommand::copy:
        return walk ? test::copyByWalk(document, indices, words, printed)
                    : document.copy(indices, words);
    case ECommand::transformPoints:
        return walk ? test::transformPointsByWalk(document, indices, matrix)
                    : document.transformPoints(indices, matrix);
    case ECommand::changePen:
        return walk ? test::changePenByWalk(document, indices, 3) : document.changePen(indices, 3);
    case ECommand::deletePoints:
        return walk ? test::deletePointsByWalk(document, indices) : document.deletePoints(indices);
    }
    return false;
}

/// One command on a freshly loaded drawing per iteration; only the command is timed.
void BM_RandomLines(benchmark::State& state, ECommand command, unsigned int step, bool walk) {
    const Words* words = randomLines();
    if (words == nullptr) {
        state.SkipWithError("50k_random_lines.stk not found");
        return;
    }
    bool result = false;
    Indices indices;
    for (auto _ : state) {
        state.PauseTiming();
        CStrokeset document(*words);
        indices = everyIndex(document.getOpcodeCount(), step);
        state.ResumeTiming();
        result = run(document, command, indices, walk);
        benchmark::DoNotOptimize(result);
    }
    state.counters["indices"] = static_cast<double>(indices.size());
    state.counters["result"] = result ? 1 : 0;
}

/// Each command as the library runs it and in its one-at-a-time form.
int registerCommands() {
    const struct {
        const char* name;
        ECommand command;
        unsigned int step;
    } commands[] = {{"copy_every_index", ECommand::copy, 1},
                    {"transformPoints_every_index", ECommand::transformPoints, 1},
                    {"changePen_every_second_index", ECommand::changePen, 2},
                    {"deletePoints_every_second_index", ECommand::deletePoints, 2}};
    for (const auto& c : commands) {
        const std::string name = std::string("BM_RandomLines/") + c.name;
        benchmark::RegisterBenchmark((name + "/onepass").c_str(), BM_RandomLines, c.command, c.step,
                                     false)
            ->Iterations(20)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((name + "/walk").c_str(), BM_RandomLines, c.command, c.step,
                                     true)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    }
    return 0;
}
const int commandsRegistered = registerCommands();

/// A single lookup, of the last index: the longest walk.
void BM_RandomLinesGetPosition(benchmark::State& state) {
    const Words* words = randomLines();
    if (words == nullptr) {
        state.SkipWithError("50k_random_lines.stk not found");
        return;
    }
    CStrokeset document(*words);
    const unsigned int last = document.getOpcodeCount() - 1;
    Eigen::RowVector3f position;
    for (auto _ : state) {
        benchmark::DoNotOptimize(document.getPosition(last, position));
    }
}
BENCHMARK(BM_RandomLinesGetPosition)->Unit(benchmark::kMicrosecond);

/// One sub-path of 20,000 points with every second point selected: the cost inside one
/// collection, where the one-at-a-time forms search and shift the lines once per index.
void BM_LongSubPath(benchmark::State& state, ECommand command, bool walk) {
    test::StreamBuilder path;
    for (int k = 0; k < 20000; ++k) {
        k == 0 ? path.moveTo(0, 0) : path.lineTo(static_cast<float>(k), static_cast<float>(k % 7));
    }
    for (auto _ : state) {
        state.PauseTiming();
        CStrokeset document(path.words());
        const Indices indices = everyIndex(document.getOpcodeCount(), 2);
        state.ResumeTiming();
        benchmark::DoNotOptimize(run(document, command, indices, walk));
    }
}

/// A run of 20,000 dots losing every second one, one scan against erasing one by one.
void BM_LongDotRun(benchmark::State& state, bool oneByOne) {
    std::vector<LibStrokeset::CDot> dots;
    for (unsigned int k = 0; k < 20000; ++k) {
        dots.emplace_back(Eigen::RowVector3f(static_cast<float>(k), 0, 0), 1, k);
    }
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<LibStrokeset::CDot> run = dots;
        const Indices every = everyIndex(20000, 2);
        std::set<unsigned int> named(every.begin(), every.end());
        state.ResumeTiming();
        oneByOne ? LibStrokeset::eraseNamedOneByOne(run, named, true)
                 : LibStrokeset::eraseNamed(run, named, true);
        benchmark::DoNotOptimize(run.data());
    }
}

int registerLongRuns() {
    for (const bool walk : {false, true}) {
        const std::string form = walk ? "/walk" : "/onepass";
        benchmark::RegisterBenchmark(
            ("BM_LongSubPath/deletePoints_every_second_index" + form).c_str(), BM_LongSubPath,
            ECommand::deletePoints, walk)
            ->Iterations(walk ? 1 : 20)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("BM_LongSubPath/changePen_every_second_index" + form).c_str(),
                                     BM_LongSubPath, ECommand::changePen, walk)
            ->Iterations(walk ? 1 : 20)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(
            ("BM_LongDotRun/deletePoints_every_second_index" + form).c_str(), BM_LongDotRun, walk)
            ->Iterations(walk ? 1 : 20)
            ->Unit(benchmark::kMillisecond);
    }
    return 0;
}
const int longRunsRegistered = registerLongRuns();

/// transformPoints of every index of a generated drawing of about range(0) collections. The
/// first call at a size also pays for faulting in the fresh memory its groups take; it runs
/// before the timing, so the figures show the steady cost.
void BM_TransformEveryIndex(benchmark::State& state) {
    LibStrokeset::Sample::SOptions options;
    options.collections = static_cast<int>(state.range(0));
    options.extent = 10000.0f;
    CStrokeset document(LibStrokeset::Sample::makeDrawing(options));
    const Indices indices = everyIndex(document.getOpcodeCount(), 1);
    test::Matrix matrix = shift();
    document.transformPoints(indices, matrix); // untimed: it faults the memory in
    for (auto _ : state) {
        benchmark::DoNotOptimize(document.transformPoints(indices, matrix));
    }
    state.SetComplexityN(static_cast<benchmark::IterationCount>(indices.size()));
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(indices.size()));
    state.counters["collections"] = static_cast<double>(document.getCollections().size());
    state.counters["indices"] = static_cast<double>(indices.size());
}
BENCHMARK(BM_TransformEveryIndex)
    ->Arg(10000)
    ->Arg(30000)
    ->Arg(100000)
    ->Arg(300000)
    ->Arg(1000000)
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond);

} // namespace
