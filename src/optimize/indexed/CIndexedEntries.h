#pragma once

#include <vector>

#include "optimize/indexed/CJumpTree.h"

namespace LibStrokeset {

/// The remaining entries of the greedy placement in a k-d tree of their end points: a
/// placement looks only at the entries near the pen, and counts the visits the scan of
/// every remaining entry would make.
class CIndexedEntries {
public:
    /// Once the flag is set, building stops and nothing may be searched.
    CIndexedEntries(const std::vector<SJumpEntry>& entries, const std::atomic<bool>& aborted);

    void remove(std::size_t entry);
    /// Offers to `choice` the remaining entries that could win from `from`, a point of the
    /// entry `placed`; returns the number of remaining entries.
    unsigned long long offer(const Eigen::RowVector3f& from, std::size_t placed, bool placedHasEnds,
                             SJumpChoice& choice) const;
    /// The first remaining entry in working-sequence order; there must be one.
    std::size_t first();

private:
    CJumpTree m_tree;
    std::vector<bool> m_removed;
    std::size_t m_remaining;
    /// No entry before it remains.
    std::size_t m_first = 0;
};

} // namespace LibStrokeset
