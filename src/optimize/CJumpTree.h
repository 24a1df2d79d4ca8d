#pragma once

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "optimize/SJumpChoice.h"
#include "optimize/SJumpEntry.h"

namespace LibStrokeset {

/// A k-d tree over the jump end points of the working sequence, from which placed entries
/// are removed, to find the next entry of the greedy order without offering every remaining
/// entry. A subtree is passed over only when a lower bound of the float jump to any point in
/// it, with room for every rounding, shows that none of its entries can beat the choice.
///
/// An entry is filed under the points through which it can win: its start when that is
/// finite, and its end when that is finite and its start has no NaN (a NaN start makes
/// the forward jump NaN, which the reversed jump never beats). An entry's own offer then
/// weighs both of its ends, so filing either is enough.
class CJumpTree {
public:
    explicit CJumpTree(const std::vector<SJumpEntry>& entries);

    /// Removes the entry at working-sequence position `entry`.
    void remove(std::size_t entry);

    /// Offers to `choice` every remaining entry that could beat it from `from`.
    void offerNearest(const Eigen::RowVector3f& from, SJumpChoice& choice) const;

private:
    struct SPoint {
        float position[3];
        std::uint32_t entry;
    };
    struct SNode {
        float low[3];
        float high[3];
        std::uint32_t first, last; // the points of the subtree
        std::uint32_t right;       // the left child follows its parent
        std::uint32_t parent;
        std::uint32_t remaining; // points not removed
    };

    std::uint32_t build(std::uint32_t first, std::uint32_t last, std::uint32_t parent);
    static double lowerBound(const SNode& node, const double from[3]);
    static bool cannotWin(double bound, const SJumpChoice& choice);

    const std::vector<SJumpEntry>& m_entries;
    std::vector<SPoint> m_points;
    std::vector<SNode> m_nodes;
    /// The leaf of each point; the points of each entry (none when it has fewer).
    std::vector<std::uint32_t> m_leafOf;
    std::vector<std::array<std::uint32_t, 2>> m_pointsOf;
    std::vector<bool> m_removed;
    mutable std::vector<std::pair<std::uint32_t, double>> m_stack;
};

} // namespace LibStrokeset
