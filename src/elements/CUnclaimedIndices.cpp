#include "elements/CUnclaimedIndices.h"

#include <algorithm>
#include <numeric>

namespace LibStrokeset {

CUnclaimedIndices::CUnclaimedIndices(const std::vector<unsigned int>& indices)
    : m_indices(indices), m_unclaimed(0) {
    std::sort(m_indices.begin(), m_indices.end());
    m_indices.erase(std::unique(m_indices.begin(), m_indices.end()), m_indices.end());
    linkAll();
}

CUnclaimedIndices::CUnclaimedIndices(const std::set<unsigned int>& indices)
    : m_indices(indices.begin(), indices.end()), m_unclaimed(0) {
    linkAll();
}

void CUnclaimedIndices::linkAll() {
    m_next.resize(m_indices.size() + 1);
    std::iota(m_next.begin(), m_next.end(), std::size_t{0});
    m_unclaimed = m_indices.size();
}

std::size_t CUnclaimedIndices::firstFrom(unsigned int lowest) {
    const auto found = std::lower_bound(m_indices.begin(), m_indices.end(), lowest);
    return skipClaimed(static_cast<std::size_t>(found - m_indices.begin()));
}

std::size_t CUnclaimedIndices::claim(std::size_t position) {
    m_next[position] = position + 1;
    --m_unclaimed;
    return skipClaimed(position + 1);
}

bool CUnclaimedIndices::claimIfPresent(unsigned int index) {
    const std::size_t position = firstFrom(index);
    if (position == end() || m_indices[position] != index) {
        return false;
    }
    claim(position);
    return true;
}

unsigned int CUnclaimedIndices::at(std::size_t position) const { return m_indices[position]; }

std::size_t CUnclaimedIndices::end() const { return m_indices.size(); }

std::size_t CUnclaimedIndices::unclaimedCount() const { return m_unclaimed; }

std::size_t CUnclaimedIndices::skipClaimed(std::size_t position) {
    // Path halving: every link followed is pointed two steps on.
    while (m_next[position] != position) {
        m_next[position] = m_next[m_next[position]];
        position = m_next[position];
    }
    return position;
}

} // namespace LibStrokeset
