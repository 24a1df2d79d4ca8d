#pragma once

#include <cstddef>
#include <vector>

namespace LibStrokeset {

/// The greedy order of the working sequence, as far as it was placed.
struct SPlacement {
    /// Positions in the working sequence, in the order placed.
    std::vector<std::size_t> order;
    /// For each placed entry: whether it was placed reversed.
    std::vector<bool> reversed;
    /// Candidate tests, (n - 1) n / 2 when every entry was placed.
    unsigned long long steps = 0;
    /// The placed jumps longer than FLT_EPSILON, summed in float in placement order.
    float total = 0.0f;
    /// Every entry was placed (the flag did not stop the placement).
    bool complete = false;
};

} // namespace LibStrokeset
