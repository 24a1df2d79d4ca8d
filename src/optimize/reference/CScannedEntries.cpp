#include "optimize/reference/CScannedEntries.h"

#include <algorithm>
#include <numeric>

namespace LibStrokeset {

CScannedEntries::CScannedEntries(const std::vector<SJumpEntry>& entries,
                                 const std::atomic<bool>& aborted)
    : m_entries(entries), m_aborted(aborted), m_remaining(entries.size()) {
    std::iota(m_remaining.begin(), m_remaining.end(), std::size_t(0));
}

void CScannedEntries::remove(std::size_t entry) {
    m_remaining.erase(std::lower_bound(m_remaining.begin(), m_remaining.end(), entry));
}

unsigned long long CScannedEntries::offerAfter(std::size_t placed, bool reversed,
                                               SJumpChoice& choice) const {
    const bool placedHasEnds = m_entries[placed].hasEnds;
    const Eigen::RowVector3f from = reversed ? m_entries[placed].start : m_entries[placed].end;
    unsigned long long visited = 0;
    for (const std::size_t entry : m_remaining) {
        ++visited;
        if (placedHasEnds && m_entries[entry].hasEnds) {
            choice.offer(from, m_entries[entry], entry);
        }
        if (m_aborted.load()) {
            break;
        }
    }
    return visited;
}

std::size_t CScannedEntries::first() const { return m_remaining.front(); }

} // namespace LibStrokeset
