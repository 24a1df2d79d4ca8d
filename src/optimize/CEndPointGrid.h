#pragma once

#include <cstdint>
#include <vector>

#include <Eigen/Core>

#include "optimize/CPositionGroups.h"

namespace LibStrokeset {

class CScanSnapshot;

/// The end points of the sub-paths of a list, filed by position in a grid of square cells
/// (x and y), so that the sub-paths with an end within a tolerance of a point are found
/// without looking at the others. The search is conservative: it may offer sub-paths whose
/// ends lie a little farther, never misses one whose end lies within the tolerance as the
/// float distance measures it.
class CEndPointGrid {
public:
    static constexpr std::uint32_t none = ~std::uint32_t(0);

    /// Whether the grid can serve this tolerance (positive): it must be finite.
    static bool canIndex(float tolerance);

    /// Files both ends of every sub-path with lines in the snapshot.
    CEndPointGrid(const CScanSnapshot& snapshot, float tolerance);

    /// Offers, in ascending list position, every position above `after` that has an end
    /// near `a` or `b` to `accept` until it answers true, and returns that position; none
    /// when no offer was accepted.
    template <class Accept>
    std::uint32_t firstAfter(const Eigen::RowVector3f& a, const Eigen::RowVector3f& b,
                             std::uint32_t after, Accept accept) const;

private:
    using SRange = CPositionGroups::SRange;

    /// Adds the cells that may hold points within the tolerance of p to `ranges`.
    void collect(const Eigen::RowVector3f& p, std::uint32_t after,
                 std::vector<SRange>& ranges) const;
    std::int64_t cellOf(double coordinate) const;
    static std::uint64_t key(std::int64_t x, std::int64_t y);
    static double cellSize(const CScanSnapshot& snapshot, double reach);

    /// How far apart two coordinates can lie on one axis when their float distance is
    /// below the tolerance, with room for rounding.
    double m_reach;
    double m_cellSize;
    CPositionGroups m_cells;
    mutable std::vector<SRange> m_ranges;
};

template <class Accept>
std::uint32_t CEndPointGrid::firstAfter(const Eigen::RowVector3f& a, const Eigen::RowVector3f& b,
                                        std::uint32_t after, Accept accept) const {
    m_ranges.clear();
    collect(a, after, m_ranges);
    collect(b, after, m_ranges);
    // Merge the cells' ascending runs; a position met twice (both ends filed, or two
    // cells) is offered once.
    std::uint32_t offered = none;
    for (;;) {
        SRange* lowest = nullptr;
        for (SRange& range : m_ranges) {
            if (range.first != range.last && (lowest == nullptr || *range.first < *lowest->first)) {
                lowest = &range;
            }
        }
        if (lowest == nullptr) {
            return none;
        }
        const std::uint32_t position = *lowest->first++;
        if (position != offered) {
            offered = position;
            if (accept(position)) {
                return position;
            }
        }
    }
}

} // namespace LibStrokeset
