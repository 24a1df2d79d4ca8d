// Loads arbitrary words, writes them, and checks that writing is a fixed point: loading what
// was written and writing again gives the same words, the same opcode count and an index map
// that sends every index to itself.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <LibStrokeset/LibStrokeset.h>

namespace {

void fail(const char* what) {
    std::fprintf(stderr, "round trip broken: %s\n", what);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<unsigned short> words(size / 2);
    for (std::size_t i = 0; i < words.size(); ++i) {
        words[i] = static_cast<unsigned short>((data[2 * i] << 8) | data[2 * i + 1]);
    }

    LibStrokeset::CStrokeset document(words);
    std::vector<unsigned short> first;
    std::vector<unsigned int> firstMap;
    const unsigned int firstCount = document.serialize(first, &firstMap);

    LibStrokeset::CStrokeset reloaded(first);
    if (reloaded.getOpcodeCount() != firstCount) {
        fail("opcode count after reload");
    }
    std::vector<unsigned short> second;
    std::vector<unsigned int> secondMap;
    const unsigned int secondCount = reloaded.serialize(second, &secondMap);
    if (second != first || secondCount != firstCount) {
        fail("second write differs");
    }
    for (unsigned int i = 0; i < secondMap.size(); ++i) {
        if (secondMap[i] != i) {
            fail("index map of a written stream");
        }
    }
    // The written stream types every index it numbers.
    std::vector<LibStrokeset::EOpcodeType> types;
    if (!reloaded.getOpcodeTypes(types)) {
        fail("unnumbered element after reload");
    }
    return 0;
}
