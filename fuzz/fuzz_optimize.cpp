// Decodes arbitrary bytes into a drawing and optimizer parameters, optimizes two copies, one
// with the reference engine and one with the indexed engine, and stops at the first
// difference in words, index map, result or counters.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "EngineComparison.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::ByteSource source(data, size);
    const test::DecodedRun input = test::DrawingDecoder(source).decode();
    const std::string different = test::compareEngines(input);
    if (!different.empty()) {
        std::fprintf(stderr, "engines differ: %s\n", different.c_str());
        std::abort();
    }
    return 0;
}
