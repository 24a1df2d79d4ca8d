// Loads arbitrary words and checks what loading and writing promise:
// - paste answers whether the words loaded whole, and a cut record ends loading at the
//   position getCutRecordPosition names, with every whole record before it loaded;
// - writing is a fixed point: loading what was written and writing again gives the same
//   words, the same opcode count and an index map that sends every index to itself;
// - a well-formed stream written behind a loaded drawing, by concatenation or by paste,
//   loses none of its records on the next load.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <LibStrokeset/LibStrokeset.h>

namespace {

using Words = std::vector<unsigned short>;
using LibStrokeset::CStrokeset;

void check(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "round trip broken: %s\n", what);
        std::abort();
    }
}

Words written(CStrokeset& document, std::vector<unsigned int>* indexMap = nullptr) {
    Words words;
    document.serialize(words, indexMap);
    return words;
}

/// Loads words and checks that paste's answer and the cut position agree.
void checkLoading(const Words& words, CStrokeset& document) {
    const bool whole = document.paste(words);
    const unsigned int cut = CStrokeset::getCutRecordPosition(words);
    check(whole == (cut == LibStrokeset::CElement::noIndex), "paste and cut position disagree");
    if (!whole) {
        check(cut < words.size(), "cut position beyond the words");
        CStrokeset front;
        check(front.paste(Words(words.begin(), words.begin() + cut)), "front of a cut stream");
        check(front.getOpcodeCount() == document.getOpcodeCount(), "opcode count before a cut");
        check(written(front) == written(document), "records before a cut");
    }
}

void checkFixedPoint(const Words& first, unsigned int firstCount) {
    CStrokeset reloaded;
    check(reloaded.paste(first), "written words do not load whole");
    check(reloaded.getOpcodeCount() == firstCount, "opcode count after reload");
    std::vector<unsigned int> map;
    const Words second = written(reloaded, &map);
    check(second == first && reloaded.getOpcodeCount() == firstCount, "second write differs");
    for (unsigned int i = 0; i < map.size(); ++i) {
        check(map[i] == i, "index map of a written stream");
    }
    std::vector<LibStrokeset::EOpcodeType> types;
    check(reloaded.getOpcodeTypes(types), "unnumbered element after reload");
}

/// Puts a well-formed stream behind the written drawing, both ways a host does it.
void checkAppending(CStrokeset& document, const Words& first, unsigned int firstCount,
                    const Words& tail, unsigned int tailCount) {
    Words joined = first;
    joined.insert(joined.end(), tail.begin(), tail.end());
    CStrokeset concatenated;
    check(concatenated.paste(joined), "concatenation does not load whole");
    check(concatenated.getOpcodeCount() == firstCount + tailCount, "records lost behind");

    check(document.paste(tail), "pasted stream does not load whole");
    CStrokeset reloaded;
    check(reloaded.paste(written(document)), "pasted drawing does not reload whole");
    check(reloaded.getOpcodeCount() == firstCount + tailCount, "pasted records lost");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Words words(size / 2);
    for (std::size_t i = 0; i < words.size(); ++i) {
        words[i] = static_cast<unsigned short>((data[2 * i] << 8) | data[2 * i + 1]);
    }

    CStrokeset document;
    checkLoading(words, document);
    std::vector<unsigned int> firstMap;
    const Words first = written(document, &firstMap);
    const unsigned int firstCount = document.getOpcodeCount();
    checkFixedPoint(first, firstCount);

    // The back half of the input, loaded and written, is a well-formed stream to append.
    CStrokeset tailSource(
        Words(words.begin() + static_cast<std::ptrdiff_t>(words.size() / 2), words.end()));
    const Words tail = written(tailSource);
    checkAppending(document, first, firstCount, tail, tailSource.getOpcodeCount());
    return 0;
}
