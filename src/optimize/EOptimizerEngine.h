#pragma once

namespace LibStrokeset {

/// How an optimize run finds its pairs and its next jumps. Both give the same document,
/// counters and result for every run that is not aborted.
enum class EOptimizerEngine {
    /// Compares every pair and offers every remaining entry: quadratic, the reference.
    eReference,
    /// Hashes, grids and a k-d tree, whatever the drawing's size; a phase falls back to the
    /// reference scan only where an index cannot serve its parameters.
    eIndexed
};

} // namespace LibStrokeset
