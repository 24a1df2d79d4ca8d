// Finding points by opcode index. Each lookup runs by the walk over the collection list (the
// reference, /walk) and by the index of the ranges that documents use (/indexed), on
// multi_skull, 50k_random_lines and generated drawings of 100k and 1M collections; a structural
// edit between lookups, which leaves the document walking; a host's loop that reads and moves every
// point once; and lookups inside one sub-path and one dot run of a million points against the scan
// they used to make. BM_DocumentMemory reports the heap a document takes per point, with and
// without its index.

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <LibStrokeset/LibStrokeset.h>

#include "SampleDrawing.h"
#include "document/CCollectionLookup.h"

namespace {

using LibStrokeset::CStrokeset;
using LibStrokeset::ELookupRoute;
using Words = std::vector<unsigned short>;

/// The words of a drawing, made or read once: "50k_random_lines" from the shared drawings,
/// "generated_N" from the sample generator with about N collections. Empty when missing.
const Words& drawingWords(const std::string& name) {
    static std::map<std::string, Words> cache;
    auto found = cache.find(name);
    if (found != cache.end()) {
        return found->second;
    }
    Words words;
    if (name.rfind("generated_", 0) == 0) {
        LibStrokeset::Sample::SOptions options;
        options.collections = std::stoi(name.substr(10));
        options.extent = 10000.0f;
        words = LibStrokeset::Sample::makeDrawing(options);
    } else {
        std::string message;
        CStrokeset::readStkFile(std::string(LIBSTROKESET_DRAWINGS_DIR) + "/" + name + ".stk", words,
                                message);
    }
    return cache.emplace(name, std::move(words)).first->second;
}

/// One loaded document per drawing, shared by the benchmarks that only read it.
CStrokeset* sharedDocument(const std::string& name) {
    static std::map<std::string, std::unique_ptr<CStrokeset>> documents;
    auto& document = documents[name];
    if (!document) {
        document = std::make_unique<CStrokeset>(drawingWords(name));
    }
    return document->getOpcodeCount() == 0 ? nullptr : document.get();
}

/// Indices spread over the whole drawing in an order no cache can follow.
std::vector<unsigned int> scattered(unsigned int count, std::size_t how_many) {
    std::mt19937 generator(7);
    std::uniform_int_distribution<unsigned int> pick(0, count - 1);
    std::vector<unsigned int> indices(how_many);
    for (unsigned int& index : indices) {
        index = pick(generator);
    }
    return indices;
}

/// The shared document of the drawing, finding collections by the route; null, with the
/// benchmark skipped, when the drawing is missing.
CStrokeset* documentOnRoute(benchmark::State& state, const std::string& name, ELookupRoute route) {
    CStrokeset* document = sharedDocument(name);
    if (document == nullptr) {
        state.SkipWithError("drawing not found");
        return nullptr;
    }
    lookupOf(*document).setRoute(route);
    return document;
}

/// One getPosition per iteration, by the route the benchmark names.
void BM_GetPosition(benchmark::State& state, const std::string& name, ELookupRoute route) {
    CStrokeset* document = documentOnRoute(state, name, route);
    if (document == nullptr) {
        return;
    }
    const std::vector<unsigned int> indices = scattered(document->getOpcodeCount(), 4096);
    Eigen::RowVector3f position;
    for (int warm = 0; warm < 4; ++warm) { // the index builds here, untimed
        document->getPosition(document->getOpcodeCount() - 1, position);
    }
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(document->getPosition(indices[next], position));
        next = (next + 1) % indices.size();
    }
    lookupOf(*document).setRoute(ELookupRoute::eAdaptive);
    state.counters["opcodes"] = document->getOpcodeCount();
    state.counters["collections"] =
        static_cast<double>(std::as_const(*document).getCollections().size());
}

/// A structural edit between single lookups: each collectionMoveUp changes the list, so the
/// next lookup cannot use the index it had. The document's route walks then, as the
/// reference does; the cost per pair shows what it costs against the walk.
void BM_MoveUpThenLookup(benchmark::State& state, const std::string& name, ELookupRoute route) {
    CStrokeset* document = documentOnRoute(state, name, route);
    if (document == nullptr) {
        return;
    }
    const std::vector<unsigned int> indices = scattered(document->getOpcodeCount(), 4096);
    Eigen::RowVector3f position;
    std::size_t next = 0;
    for (auto _ : state) {
        // Moving the last collection up leaves every range as it was and changes the list.
        benchmark::DoNotOptimize(document->collectionMoveUp(
            std::as_const(*document).getCollections().back()->getStartIndex()));
        benchmark::DoNotOptimize(document->getPosition(indices[next], position));
        next = (next + 1) % indices.size();
    }
    lookupOf(*document).setRoute(ELookupRoute::eAdaptive);
}

/// The host's loop: read every point and move it a little, each index once, in order.
void BM_ReadWriteEveryIndex(benchmark::State& state, const std::string& name) {
    const Words& words = drawingWords(name);
    if (words.empty()) {
        state.SkipWithError("drawing not found");
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        CStrokeset document(words);
        state.ResumeTiming();
        Eigen::RowVector3f position;
        unsigned int moved = 0;
        for (unsigned int i = 0; i < document.getOpcodeCount(); ++i) {
            if (document.getPosition(i, position)) {
                position.x() += 0.5f;
                moved += document.setPosition(i, position) ? 1 : 0;
            }
        }
        benchmark::DoNotOptimize(moved);
        state.counters["points moved"] = moved;
    }
}

constexpr unsigned int kMillion = 1000000;

/// A sub-path of a million lines, numbered as loading numbers it.
LibStrokeset::CSubPath& longSubPath() {
    static LibStrokeset::CSubPath path = [] {
        LibStrokeset::CSubPath made;
        for (unsigned int k = 0; k < kMillion; ++k) {
            LibStrokeset::CLine line(Eigen::RowVector3f(static_cast<float>(k), 0, 0),
                                     Eigen::RowVector3f(static_cast<float>(k + 1), 0, 0), 1, 1, k,
                                     k + 1);
            made.addLine(line);
        }
        return made;
    }();
    return path;
}

LibStrokeset::CDotCollection& longDotRun() {
    static LibStrokeset::CDotCollection dots = [] {
        LibStrokeset::CDotCollection made;
        for (unsigned int k = 0; k < kMillion; ++k) {
            LibStrokeset::CDot dot(Eigen::RowVector3f(static_cast<float>(k), 0, 0), 1, k);
            made.addDot(dot);
        }
        return made;
    }();
    return dots;
}

/// getPosition inside one long collection: its table (/table) against the scan from the front
/// that every lookup used to make (/scan).
template <class Collection, class Scan>
void lookInside(benchmark::State& state, Collection& collection, bool table, Scan scan) {
    const std::vector<unsigned int> indices = scattered(kMillion, 4096);
    Eigen::RowVector3f position;
    collection.getPosition(0, position); // builds the table, untimed
    std::size_t next = 0;
    for (auto _ : state) {
        const unsigned int index = indices[next];
        benchmark::DoNotOptimize(table ? collection.getPosition(index, position)
                                       : scan(collection, index, position));
        next = (next + 1) % indices.size();
    }
}

void BM_LongSubPathGetPosition(benchmark::State& state, bool table) {
    lookInside(state, longSubPath(), table,
               [](const LibStrokeset::CSubPath& path, unsigned int index, Eigen::RowVector3f& at) {
                   for (const LibStrokeset::CLine& line : path.getLines()) {
                       if (line.getOpcodeIndex() == index) {
                           at = line.getPosition();
                           return true;
                       }
                   }
                   return false;
               });
}

void BM_LongDotRunGetPosition(benchmark::State& state, bool table) {
    const LibStrokeset::CDotCollection& dots = longDotRun();
    lookInside(
        state, longDotRun(), table,
        [&dots](const LibStrokeset::CDotCollection&, unsigned int index, Eigen::RowVector3f& at) {
            for (auto it = dots.cbegin(); it != dots.cend(); ++it) {
                if (it->getOpcodeIndex() == index) {
                    at = it->getPosition();
                    return true;
                }
            }
            return false;
        });
}

/// Heap bytes per point of a loaded document, and what its index of ranges adds.
void BM_DocumentMemory(benchmark::State& state, const std::string& name) {
    const Words& words = drawingWords(name);
    if (words.empty()) {
        state.SkipWithError("drawing not found");
        return;
    }
    double document = 0, index = 0, points = 0;
    for (auto _ : state) {
        const std::size_t before = mallinfo2().uordblks;
        CStrokeset loaded(words);
        const std::size_t afterLoading = mallinfo2().uordblks;
        lookupOf(loaded).setRoute(ELookupRoute::eIndexed);
        Eigen::RowVector3f position;
        loaded.getPosition(0, position);
        const std::size_t afterIndex = mallinfo2().uordblks;
        points = loaded.getPointsCount();
        document = static_cast<double>(afterLoading - before) / points;
        index = static_cast<double>(afterIndex - afterLoading) / points;
    }
    state.counters["points"] = points;
    state.counters["document bytes/point"] = document;
    state.counters["index bytes/point"] = index;
}

int registerLookups() {
    for (const std::string name :
         {"multi_skull", "50k_random_lines", "generated_100000", "generated_1000000"}) {
        const bool huge = name == "generated_1000000";
        benchmark::RegisterBenchmark(("BM_GetPosition/" + name + "/walk").c_str(), BM_GetPosition,
                                     name, ELookupRoute::eWalk)
            ->Iterations(huge ? 40 : 400)
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("BM_GetPosition/" + name + "/indexed").c_str(),
                                     BM_GetPosition, name, ELookupRoute::eAdaptive)
            ->Unit(benchmark::kMicrosecond);
        for (const ELookupRoute route : {ELookupRoute::eWalk, ELookupRoute::eAdaptive}) {
            benchmark::RegisterBenchmark(("BM_MoveUpThenLookup/" + name +
                                          (route == ELookupRoute::eWalk ? "/walk" : "/indexed"))
                                             .c_str(),
                                         BM_MoveUpThenLookup, name, route)
                ->Iterations(huge ? 20 : 200)
                ->Unit(benchmark::kMicrosecond);
        }
        benchmark::RegisterBenchmark(("BM_ReadWriteEveryIndex/" + name).c_str(),
                                     BM_ReadWriteEveryIndex, name)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("BM_DocumentMemory/" + name).c_str(), BM_DocumentMemory, name)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    }
    for (const bool table : {false, true}) {
        const std::string route = table ? "/table" : "/scan";
        benchmark::RegisterBenchmark(("BM_LongSubPathGetPosition" + route).c_str(),
                                     BM_LongSubPathGetPosition, table)
            ->Iterations(table ? 1000000 : 200)
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("BM_LongDotRunGetPosition" + route).c_str(),
                                     BM_LongDotRunGetPosition, table)
            ->Iterations(table ? 1000000 : 200)
            ->Unit(benchmark::kMicrosecond);
    }
    return 0;
}
const int lookupsRegistered = registerLookups();

} // namespace
