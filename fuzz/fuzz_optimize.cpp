// Decodes arbitrary bytes into a drawing and optimizer parameters, optimizes two copies, one
// with the reference engine and one with the indexed engine, and stops at the first
// difference in words, index map, result or counters. The drawing's greedy order is also
// walked through a jump tree of one point per leaf and against a scan of every entry.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "EngineComparison.h"
#include "JumpTreeWalk.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::ByteSource source(data, size);
    const test::DecodedRun input = test::DrawingDecoder(source).decode();
    const std::string different = test::compareEngines(input);
    if (!different.empty()) {
        std::fprintf(stderr, "engines differ: %s\n", different.c_str());
        std::abort();
    }
    const std::string walk = test::compareTreeWalk(input);
    if (!walk.empty()) {
        std::fprintf(stderr, "tree walk differs: %s\n", walk.c_str());
        std::abort();
    }
    return 0;
}
