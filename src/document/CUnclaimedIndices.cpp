#include "document/CUnclaimedIndices.h"

#include <algorithm>
#include <numeric>

namespace LibStrokeset {

CUnclaimedIndices::CUnclaimedIndices(const std::vector<unsigned int>& indices)
    : m_indices(indices), m_unclaimed(0), m_finger(0) {
    std::sort(m_indices.begin(), m_indices.end());
    m_indices.erase(std::unique(m_indices.begin(), m_indices.end()), m_indices.end());
    m_next.resize(m_indices.size() + 1);
    std::iota(m_next.begin(), m_next.end(), std::size_t{0});
    m_unclaimed = m_indices.size();
}

std::size_t CUnclaimedIndices::firstFrom(unsigned int lowest) {
    return skipClaimed(lowerBound(lowest));
}

std::size_t CUnclaimedIndices::lowerBound(unsigned int lowest) {
    // Searches mostly come in ascending order (the ranges of a serialized list ascend):
    // gallop on from the last answer when it lies below, else search it all.
    std::size_t from = 0;
    std::size_t to = m_indices.size();
    if (m_finger == 0 || m_indices[m_finger - 1] < lowest) {
        from = m_finger;
        std::size_t step = 1;
        while (from + step - 1 < to && m_indices[from + step - 1] < lowest) {
            from += step;
            step *= 2;
        }
        to = std::min(to, from + step);
    }
    const auto begin = m_indices.begin();
    m_finger =
        static_cast<std::size_t>(std::lower_bound(begin + static_cast<std::ptrdiff_t>(from),
                                                  begin + static_cast<std::ptrdiff_t>(to), lowest) -
                                 begin);
    return m_finger;
}

std::size_t CUnclaimedIndices::claim(std::size_t position) {
    m_next[position] = position + 1;
    --m_unclaimed;
    return skipClaimed(position + 1);
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
