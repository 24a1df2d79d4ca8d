#pragma once

#include <cstdint>
#include <vector>

namespace LibStrokeset {
namespace Sample {

/// What a sample drawing is made of.
struct SOptions {
    /// Roughly how many collections the drawing holds.
    int collections = 3000;
    std::uint64_t seed = 1;
    /// Side of the square the drawing fills, in drawing units.
    float extent = 1000.0f;
    /// How far apart the pieces of a broken outline, and the ends of an almost closed
    /// outline, are left: meant to lie below the optimizer's tolerance.
    float gap = 0.02f;
    /// Length of the stray lines: meant to lie below the tolerance too.
    float strayLength = 0.005f;
};

/// A deterministic drawing on which every optimizer phase has work: hatching, broken
/// outlines whose pieces meet within `gap` (some drawn backwards), almost closed outlines,
/// duplicated and reversed duplicated paths, stray short lines, runs of dots, a pen change
/// or two and one opaque record. The same options always give the same words.
std::vector<unsigned short> makeDrawing(const SOptions& options);

} // namespace Sample
} // namespace LibStrokeset
