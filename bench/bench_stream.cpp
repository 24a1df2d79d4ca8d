// Loading and writing a stream of about ten million words.

#include <benchmark/benchmark.h>

#include <LibStrokeset/LibStrokeset.h>

#include "SampleDrawing.h"

namespace {

const std::vector<unsigned short>& tenMillionWords() {
    static const std::vector<unsigned short> words = [] {
        LibStrokeset::Sample::SOptions options;
        options.collections = 580000;
        options.extent = 10000.0f;
        return LibStrokeset::Sample::makeDrawing(options);
    }();
    return words;
}

void BM_Load(benchmark::State& state) {
    const auto& words = tenMillionWords();
    for (auto _ : state) {
        LibStrokeset::CStrokeset document(words);
        benchmark::DoNotOptimize(document.getOpcodeCount());
    }
    state.counters["words"] = static_cast<double>(words.size());
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(words.size()));
}
BENCHMARK(BM_Load)->Unit(benchmark::kMillisecond);

void BM_Serialize(benchmark::State& state) {
    const auto& words = tenMillionWords();
    LibStrokeset::CStrokeset document(words);
    std::vector<unsigned short> out;
    std::vector<unsigned int> indexMap;
    for (auto _ : state) {
        out.clear();
        indexMap.clear();
        document.serialize(out, &indexMap);
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["words"] = static_cast<double>(out.size());
    state.SetItemsProcessed(state.iterations() * static_cast<long long>(out.size()));
}
BENCHMARK(BM_Serialize)->Unit(benchmark::kMillisecond);

} // namespace
