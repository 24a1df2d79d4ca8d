#include "optimize/indexed/CIndexedEntries.h"

#include <utility>

namespace LibStrokeset {

CIndexedEntries::CIndexedEntries(const std::vector<SJumpEntry>& entries,
                                 const std::atomic<bool>& aborted)
    : m_removed(entries.size(), false), m_tree(entries, aborted), m_remaining(m_removed.size()) {}

CIndexedEntries::CIndexedEntries(CJumpTree::CFiler&& filer, const std::atomic<bool>& aborted)
    : m_removed(filer.count(), false), m_tree(std::move(filer), aborted),
      m_remaining(m_removed.size()) {}

void CIndexedEntries::remove(std::size_t entry) {
    m_removed[entry] = true;
    m_tree.remove(entry);
    --m_remaining;
}

unsigned long long CIndexedEntries::offerAfter(std::size_t placed, bool reversed,
                                               SJumpChoice& choice) const {
    // An entry without ends offers nothing.
    Eigen::RowVector3f exit;
    if (m_tree.exitOf(placed, reversed, exit)) {
        m_tree.offerNearest(exit, placed, choice);
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
