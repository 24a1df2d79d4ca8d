#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace LibStrokeset {

/// For a run of elements that carry opcode indices (the dots of a run, the start copies of a
/// sub-path's lines), the position of the first element that carries a given index: what a
/// scan from the front finds, in a logarithm or in one step.
///
/// It describes the run as it was built; its owner drops it whenever an index or the run's
/// length may change.
class CFirstPositions {
public:
    /// Runs shorter than this are scanned: building would cost more than it saves.
    static constexpr std::size_t minimumCount = 32;

    /// Describes `count` elements, element k carrying `indexOf(k)`.
    template <class IndexOf> CFirstPositions(std::size_t count, IndexOf indexOf);

    /// True when some index is carried by more than one element.
    bool repeatsAnIndex() const { return !m_consecutive && m_firsts.size() < m_count; }

    /// Position of the first element carrying the index; the count when none does.
    std::size_t find(unsigned int opcodeIndex) const {
        if (m_consecutive) {
            // Indices first, first + 1, ...: each occurs once, at its offset from the first.
            const std::size_t offset = opcodeIndex - m_first;
            return offset < m_count ? offset : m_count;
        }
        const auto found =
            std::lower_bound(m_firsts.begin(), m_firsts.end(), std::make_pair(opcodeIndex, 0u));
        return found != m_firsts.end() && found->first == opcodeIndex ? found->second : m_count;
    }

private:
    std::size_t m_count;
    // After loading and after serialize, the indices of a run are consecutive: no table.
    bool m_consecutive;
    unsigned int m_first;
    // Otherwise (index, first position), sorted by index.
    std::vector<std::pair<unsigned int, unsigned int>> m_firsts;
};

template <class IndexOf>
CFirstPositions::CFirstPositions(std::size_t count, IndexOf indexOf)
    : m_count(count), m_consecutive(true), m_first(count == 0 ? 0u : indexOf(0)) {
    for (std::size_t k = 1; k < count && m_consecutive; ++k) {
        m_consecutive = indexOf(k) == m_first + static_cast<unsigned int>(k);
    }
    if (m_consecutive) {
        return;
    }
    m_firsts.reserve(count);
    for (std::size_t k = 0; k < count; ++k) {
        m_firsts.emplace_back(indexOf(k), static_cast<unsigned int>(k));
    }
    // Sorting pairs puts the lowest position of each index first; keep only that one.
    std::sort(m_firsts.begin(), m_firsts.end());
    m_firsts.erase(std::unique(m_firsts.begin(), m_firsts.end(),
                               [](const auto& a, const auto& b) { return a.first == b.first; }),
                   m_firsts.end());
}

/// Position of the first of `elements` (dots, records) carrying the index; the element count
/// when none does. A short run is scanned; a long one is searched in `table`, built here
/// when its owner has none.
template <class Element>
std::size_t firstWithIndex(const std::vector<Element>& elements,
                           std::optional<CFirstPositions>& table, unsigned int opcodeIndex) {
    if (elements.size() < CFirstPositions::minimumCount) {
        return static_cast<std::size_t>(std::find_if(elements.begin(), elements.end(),
                                                     [opcodeIndex](const Element& element) {
                                                         return element.getOpcodeIndex() ==
                                                                opcodeIndex;
                                                     }) -
                                        elements.begin());
    }
    if (!table) {
        table.emplace(elements.size(),
                      [&elements](std::size_t k) { return elements[k].getOpcodeIndex(); });
    }
    return table->find(opcodeIndex);
}

} // namespace LibStrokeset
