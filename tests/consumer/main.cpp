// Loads a drawing from words, optimizes it and writes it back, through the installed package.
#include <cstdio>
#include <vector>

#include <LibStrokeset/LibStrokeset.h>

int main() {
    // Two one-line paths that meet end to start, then a dot.
    const std::vector<unsigned short> words = {
        0x240A, 0x0001,                          // pen 1
        0x5416, 0x0000, 0x0000, 0x0000, 0x0000,  // move-to (0, 0)
        0x5417, 0x3F80, 0x0000, 0x0000, 0x0000,  // line-to (1, 0)
        0x5416, 0x3F80, 0x0000, 0x0000, 0x0000,  // move-to (1, 0)
        0x5417, 0x4000, 0x0000, 0x0000, 0x0000,  // line-to (2, 0)
        0x541A, 0x4040, 0x0000, 0x0000, 0x0000}; // dot (3, 0)
    LibStrokeset::CStrokeset document(words);
    LibStrokeset::COptimizationParameters parameters(0.01f, true, true, true, true, true, true,
                                                     false);
    LibStrokeset::COptimizationResults results;
    document.optimize(parameters, results, [](int, float) {});

    std::vector<unsigned short> out;
    std::vector<unsigned int> indexMap;
    const unsigned int count = document.serialize(out, &indexMap);
    std::printf("opcodes %u, joined %d, words %zu\n", count, results.autojoinedPaths(), out.size());
    // The join leaves one path of three points (the shared point at the midpoint) and the dot.
    return count == 4 && results.autojoinedPaths() == 1 ? 0 : 1;
}
