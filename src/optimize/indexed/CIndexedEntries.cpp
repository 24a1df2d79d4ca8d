#include "optimize/indexed/CIndexedEntries.h"

#include <algorithm>

namespace LibStrokeset {

CIndexedEntries::CIndexedEntries(const std::vector<SJumpEntry>& entries,
                                 const std::atomic<bool>& aborted)
    : m_tree(entries, aborted), m_removed(entries.size(), false), m_remaining(entries.size()) {
    Eigen::RowVector3f exit;
    for (std::size_t i = 0; i < entries.size() && !aborted.load(); ++i) {
        if (entries[i].hasEnds && !m_tree.exitOf(i, false, exit)) {
            m_unfiled.push_back({i, entries[i].start, entries[i].end});
        }
    }
}

void CIndexedEntries::remove(std::size_t entry) {
    m_removed[entry] = true;
    m_tree.remove(entry);
    --m_remaining;
}

unsigned long long CIndexedEntries::offerAfter(std::size_t placed, bool reversed,
                                               SJumpChoice& choice) const {
    Eigen::RowVector3f exit;
    if (m_tree.exitOf(placed, reversed, exit)) {
        m_tree.offerNearest(exit, placed, choice);
        return m_remaining;
    }
    const auto unfiled = std::lower_bound(
        m_unfiled.begin(), m_unfiled.end(), placed,
        [](const SUnfiled& entry, std::size_t position) { return entry.entry < position; });
    // An entry without ends offers nothing.
    if (unfiled != m_unfiled.end() && unfiled->entry == placed) {
        m_tree.offerNearest(reversed ? unfiled->start : unfiled->end, placed, choice);
    }
    return m_remaining;
}

std::size_t CIndexedEntries::first() {
    while (m_removed[m_first]) {
        ++m_first;
    }
    return m_first;
}

} // namespace LibStrokeset
