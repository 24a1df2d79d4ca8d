#include "optimize/indexed/CPositionGroups.h"

#include <algorithm>

namespace LibStrokeset {

CPositionGroups::CPositionGroups(const std::vector<SKeyedPosition>& pairs)
    : m_groupOf(pairs.size()) {
    // A counting sort by group keeps the input order, and so ascending positions, in each.
    std::vector<std::uint32_t> groups(pairs.size());
    std::vector<std::uint32_t> counts;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const auto next = static_cast<std::uint32_t>(counts.size());
        groups[i] = m_groupOf.insert(pairs[i].first, next);
        if (groups[i] == next) {
            counts.push_back(0);
        }
        ++counts[groups[i]];
    }
    m_starts.assign(counts.size() + 1, 0);
    for (std::size_t g = 0; g < counts.size(); ++g) {
        m_starts[g + 1] = m_starts[g] + counts[g];
    }
    std::vector<std::uint32_t> fill(m_starts.begin(), m_starts.end() - 1);
    m_positions.resize(pairs.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        m_positions[fill[groups[i]]++] = pairs[i].second;
    }
}

CPositionGroups::SRange CPositionGroups::after(std::uint64_t key, std::uint32_t position) const {
    const std::uint32_t group = m_groupOf.find(key);
    if (group == CFlatIndexMap::missing) {
        return {nullptr, nullptr};
    }
    const std::uint32_t* first = m_positions.data() + m_starts[group];
    const std::uint32_t* last = m_positions.data() + m_starts[group + 1];
    return {std::upper_bound(first, last, position), last};
}

} // namespace LibStrokeset
