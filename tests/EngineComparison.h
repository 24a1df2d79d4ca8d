#pragma once

// Runs an optimization with the reference engine and with the indexed one on two equal
// documents and names the first thing in which they differ: the words and index map that
// serialize writes afterwards, the result, or any counter but the elapsed time (floats bit
// for bit).

#include <atomic>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "DrawingDecoder.h"
#include "optimize/OptimizeCollections.h"

namespace test {

struct EngineRun {
    bool result = false;
    LibStrokeset::COptimizationResults results;
    Words words;
    std::vector<unsigned int> indexMap;
    /// Writing threw: an edit left an old index beyond the numbering, which serialize
    /// reports as "memory corruption"; words and map hold what came before.
    bool threw = false;
};

inline EngineRun runEngine(const DecodedRun& input, LibStrokeset::EOptimizerEngine engine) {
    LibStrokeset::CStrokeset document(input.words);
    for (unsigned int index : input.emptied) {
        document.deletePoint(index);
    }
    std::atomic<bool> aborted{false};
    EngineRun run;
    run.result = LibStrokeset::optimizeCollections(
        document.getCollections(), aborted, input.parameters, run.results, [](int, float) {},
        engine);
    try {
        document.serialize(run.words, &run.indexMap);
    } catch (const char*) {
        run.threw = true;
    }
    return run;
}

inline std::uint32_t bitsOf(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// Empty when the two runs agree.
inline std::string difference(const EngineRun& reference, const EngineRun& indexed) {
    const LibStrokeset::COptimizationResults& a = reference.results;
    const LibStrokeset::COptimizationResults& b = indexed.results;
    std::ostringstream out;
    const auto check = [&out](const char* what, auto x, auto y) {
        if (out.tellp() == 0 && !(x == y)) out << what << ": " << x << " vs " << y;
    };
    check("result", reference.result, indexed.result);
    check("passes", a.passes(), b.passes());
    check("estimatedRuns", a.estimatedRuns(), b.estimatedRuns());
    check("performedRuns", a.performedRuns(), b.performedRuns());
    check("startCollectionSize", a.startCollectionSize(), b.startCollectionSize());
    check("endCollectionSize", a.endCollectionSize(), b.endCollectionSize());
    check("duplicatedPaths", a.duplicatedPaths(), b.duplicatedPaths());
    check("autojoinedPaths", a.autojoinedPaths(), b.autojoinedPaths());
    check("degeneratedLines", a.degeneratedLines(), b.degeneratedLines());
    check("closedSubpaths", a.closedSubpaths(), b.closedSubpaths());
    check("jump total before", bitsOf(a.totalJumpDistanceBeforeOptimization()),
          bitsOf(b.totalJumpDistanceBeforeOptimization()));
    check("jump total after", bitsOf(a.totalJumpDistanceAfterOptimization()),
          bitsOf(b.totalJumpDistanceAfterOptimization()));
    check("threw", reference.threw, indexed.threw);
    check("word count", reference.words.size(), indexed.words.size());
    check("words", reference.words == indexed.words, true);
    check("index map", reference.indexMap == indexed.indexMap, true);
    return out.str();
}

inline std::string compareEngines(const DecodedRun& input) {
    return difference(runEngine(input, LibStrokeset::EOptimizerEngine::eReference),
                      runEngine(input, LibStrokeset::EOptimizerEngine::eIndexed));
}

} // namespace test
