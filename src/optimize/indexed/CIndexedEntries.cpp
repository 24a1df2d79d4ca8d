#include "optimize/indexed/CIndexedEntries.h"

namespace LibStrokeset {

CIndexedEntries::CIndexedEntries(const std::vector<SJumpEntry>& entries,
                                 const std::atomic<bool>& aborted)
    : m_tree(entries, aborted), m_removed(entries.size(), false), m_remaining(entries.size()) {}

void CIndexedEntries::remove(std::size_t entry) {
    m_removed[entry] = true;
    m_tree.remove(entry);
    --m_remaining;
}

unsigned long long CIndexedEntries::offer(const Eigen::RowVector3f& from, std::size_t placed,
                                          bool placedHasEnds, SJumpChoice& choice) const {
    if (placedHasEnds) {
        m_tree.offerNearest(from, placed, choice);
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
