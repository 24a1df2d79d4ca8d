#pragma once

#include <atomic>
#include <vector>

#include "optimize/rules/SJumpChoice.h"
#include "optimize/rules/SJumpEntry.h"

namespace LibStrokeset {

/// The remaining entries of the greedy placement as the reference finds the next one:
/// every remaining entry is visited, in working-sequence order, at every placement.
class CScannedEntries {
public:
    CScannedEntries(const std::vector<SJumpEntry>& entries, const std::atomic<bool>& aborted);

    void remove(std::size_t entry);
    /// Visits every remaining entry, offering it to `choice` from where the entry `placed`
    /// is left (entered `reversed` or not) when both have end points, and polls the flag
    /// after each; returns the entries visited.
    unsigned long long offerAfter(std::size_t placed, bool reversed, SJumpChoice& choice) const;
    /// The first remaining entry; there must be one.
    std::size_t first() const;

private:
    const std::vector<SJumpEntry>& m_entries;
    const std::atomic<bool>& m_aborted;
    /// Working-sequence positions, ascending.
    std::vector<std::size_t> m_remaining;
};

} // namespace LibStrokeset
