#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "optimize/indexed/CFlatIndexMap.h"

namespace LibStrokeset {

/// List positions grouped by a 64-bit key (a hash of a path, a grid cell of an end point),
/// each group in ascending position order: the candidate lists of the indexed scans.
class CPositionGroups {
public:
    using SKeyedPosition = std::pair<std::uint64_t, std::uint32_t>;

    /// A run of ascending positions.
    struct SRange {
        const std::uint32_t* first;
        const std::uint32_t* last;
    };

    /// Groups the pairs, which come in ascending position order. A key equal to
    /// CFlatIndexMap::freeKey is not allowed.
    explicit CPositionGroups(const std::vector<SKeyedPosition>& pairs);

    /// The positions of the group of `key` that lie above `position`.
    SRange after(std::uint64_t key, std::uint32_t position) const;

private:
    CFlatIndexMap m_groupOf;
    /// Group g holds m_positions[m_starts[g]] .. m_positions[m_starts[g + 1] - 1].
    std::vector<std::uint32_t> m_starts;
    std::vector<std::uint32_t> m_positions;
};

} // namespace LibStrokeset
