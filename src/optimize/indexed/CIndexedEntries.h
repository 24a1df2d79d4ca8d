#pragma once

#include <vector>

#include "optimize/indexed/CJumpTree.h"

namespace LibStrokeset {

/// The remaining entries of the greedy placement in a k-d tree of their end points: a
/// placement looks only at the entries near the pen, and counts the visits the scan of
/// every remaining entry would make.
class CIndexedEntries {
public:
    /// Once the flag is set, building stops and nothing may be searched. The entries are not
    /// read afterwards: the tree holds what a placement needs of them.
    CIndexedEntries(const std::vector<SJumpEntry>& entries, const std::atomic<bool>& aborted);
    /// The same over the entries a filer was given.
    CIndexedEntries(CJumpTree::CFiler&& filer, const std::atomic<bool>& aborted);

    void remove(std::size_t entry);
    /// Offers to `choice` the remaining entries that could win from where the entry
    /// `placed` is left, entered `reversed` or not; returns the number of remaining entries.
    unsigned long long offerAfter(std::size_t placed, bool reversed, SJumpChoice& choice) const;
    /// The first remaining entry in working-sequence order; there must be one.
    std::size_t first();

private:
    std::vector<bool> m_removed;
    CJumpTree m_tree;
    std::size_t m_remaining;
    /// No entry before it remains.
    std::size_t m_first = 0;
};

} // namespace LibStrokeset
