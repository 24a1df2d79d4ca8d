#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include "optimize/rules/SJumpChoice.h"
#include "optimize/rules/SJumpEntry.h"

namespace LibStrokeset {

/// A k-d tree over the jump end points of the working sequence, from which placed entries
/// are removed, to find the next entry of the greedy order without offering every remaining
/// entry. A subtree is passed over only when a lower bound of the float jump to any point in
/// it, with room for every rounding, shows that none of its entries can beat the choice.
///
/// An entry is filed under the points through which it can win: its start when that is
/// finite, and its end when that is finite, differs from the start and the start has no
/// NaN (a NaN start makes the forward jump NaN, which the reversed jump never beats). An
/// entry wins through the point its jump goes to, so a point farther than the choice can be
/// passed over without offering its entry.
class CJumpTree {
public:
    /// Points a leaf holds at most. At a million entries a step of the greedy order costs
    /// mostly the cache misses of the leaves it reads; 32 contiguous points cost hardly more
    /// to scan than 8, and leave a quarter of the nodes to walk and hold.
    static constexpr std::uint32_t defaultLeafSize = 32;

    class CFiler;

    /// Once the flag is set the build stops, and the tree must not be used. Tests pass small
    /// leaves, so that small inputs still get a deep tree.
    CJumpTree(const std::vector<SJumpEntry>& entries, const std::atomic<bool>& aborted,
              std::uint32_t leafSize = defaultLeafSize);
    /// The same over the entries a filer was given.
    CJumpTree(CFiler&& filer, const std::atomic<bool>& aborted,
              std::uint32_t leafSize = defaultLeafSize);

    /// Removes the entry at working-sequence position `entry`.
    void remove(std::size_t entry);

    /// Where the entry at `entry` is left, entered reversed or not; false when it has no
    /// ends. The greedy order reads its ends here, next to the search.
    bool exitOf(std::size_t entry, bool reversed, Eigen::RowVector3f& exit) const;

    /// Offers to `choice` every remaining entry that could beat it from `from`, a point of
    /// the entry `near` (the one just placed): the search starts where that point is filed.
    void offerNearest(const Eigen::RowVector3f& from, std::size_t near, SJumpChoice& choice) const;

private:
    static constexpr std::uint32_t none = ~std::uint32_t(0);

    /// A filed point with the other end of its entry, so that the entry is offered without
    /// a look-up far away in memory.
    struct SPoint {
        float position[3];
        Eigen::RowVector3f other;
        std::uint32_t entry;
        std::uint8_t flags;
    };
    static constexpr std::uint8_t removedFlag = 1;
    /// The point is its entry's end, and the other one its start.
    static constexpr std::uint8_t isEndFlag = 2;
    /// An entry with ends of which no point is filed (its ends are not finite).
    struct SUnfiled {
        std::size_t entry;
        Eigen::RowVector3f start;
        Eigen::RowVector3f end;
    };

public:
    /// Takes the entries one at a time, in working-sequence order, and keeps what the tree
    /// needs of them: a caller that describes them on the way never holds them all at once,
    /// which at a million entries would make the peak memory.
    class CFiler {
    public:
        /// Room for the points of `entries` entries.
        explicit CFiler(std::size_t entries);
        /// Files the next entry.
        void add(const SJumpEntry& entry);
        std::size_t count() const { return m_count; }

    private:
        friend class CJumpTree;
        std::vector<SPoint> m_points;
        std::vector<SUnfiled> m_unfiled;
        std::size_t m_count = 0;
    };

private:
    /// The bounding box of a subtree's points.
    struct SBox {
        float low[3];
        float high[3];
    };
    /// What a search reads of a node, in one place.
    struct SNode {
        SBox box;
        std::uint32_t first, last; // its points
        std::uint32_t remaining;   // 0 once every point below is removed
    };

    static CFiler filed(const std::vector<SJumpEntry>& entries);
    /// Builds the nodes over the filed points, then notes where each entry's points went.
    void buildTree();
    /// Builds node `node` (children 2 node + 1 and 2 node + 2) over points [first, last),
    /// which lie in `cell`, the region's part within the box of all points.
    void build(std::size_t node, std::uint32_t first, std::uint32_t last, SBox cell, SBox region);
    SBox boxOf(std::uint32_t first, std::uint32_t last) const;
    static Eigen::RowVector3f positionOf(const SPoint& point) {
        return {point.position[0], point.position[1], point.position[2]};
    }
    /// The leaf that holds a slot, found as the build split the slots.
    std::size_t leafOf(std::uint32_t slot) const;
    bool isLeaf(std::size_t node) const;
    void searchLeaf(std::size_t node, const Eigen::RowVector3f& from, SJumpChoice& choice) const;
    void searchBelow(std::size_t node, const Eigen::RowVector3f& from, const double at[3],
                     SJumpChoice& choice) const;
    /// The squared gap from a point to the box of a node, in double.
    double gapSquared(std::size_t node, const double from[3]) const;
    /// The squared distance from a point in a node's region to the region's border.
    double borderSquared(std::size_t node, const double from[3]) const;
    /// Whether no point with this squared gap can be as near as the choice.
    static bool cannotWin(double gapSquared, const SJumpChoice& choice);

    const std::atomic<bool>& m_aborted;
    std::uint32_t m_leafSize;
    std::vector<SPoint> m_points;
    /// By position; almost always empty.
    std::vector<SUnfiled> m_unfiled;
    std::vector<SNode> m_nodes;
    /// The region of each node: the part of space its ancestors' splits give it, which
    /// holds its points and no point of another subtree's inside.
    std::vector<SBox> m_regions;
    /// The points of each entry (none when it has fewer).
    std::vector<std::array<std::uint32_t, 2>> m_pointsOf;
    mutable std::vector<std::pair<std::uint32_t, double>> m_stack;
};

} // namespace LibStrokeset
