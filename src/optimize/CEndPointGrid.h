#pragma once

#include <cstdint>
#include <vector>

#include <Eigen/Core>

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
    /// A filed end point.
    struct SEnd {
        std::uint32_t position;
        float x, y;
    };
    /// The ends of one cell above some position.
    struct SRange {
        const SEnd* first;
        const SEnd* last;
    };

    void chooseCells(const std::vector<float>& xs, const std::vector<float>& ys);
    /// The cell column (axis 0) or row (axis 1) of a coordinate.
    std::uint32_t cellOf(int axis, double coordinate) const;
    /// Whether an end may lie within the tolerance of p.
    bool near(const SEnd& end, const Eigen::RowVector3f& p) const;
    /// Adds the cells that may hold ends within the tolerance of p to m_ranges.
    void collect(const Eigen::RowVector3f& p, std::uint32_t after) const;

    /// How far apart two coordinates can lie on one axis when their float distance is
    /// below the tolerance, with room for rounding.
    double m_reach;
    double m_cellSize = 1.0;
    double m_origin[2] = {0.0, 0.0};
    std::uint32_t m_cells[2] = {1, 1};
    /// The ends, cell after cell (row-major), each cell in ascending position; the ends of
    /// cell c are m_ends[m_cellStarts[c]] .. m_ends[m_cellStarts[c + 1] - 1].
    std::vector<SEnd> m_ends;
    std::vector<std::uint32_t> m_cellStarts;
    mutable std::vector<SRange> m_ranges;
};

template <class Accept>
std::uint32_t CEndPointGrid::firstAfter(const Eigen::RowVector3f& a, const Eigen::RowVector3f& b,
                                        std::uint32_t after, Accept accept) const {
    m_ranges.clear();
    collect(a, after);
    collect(b, after);
    // Merge the cells' ascending runs; a position met twice (both ends filed, or two
    // cells) is offered once.
    std::uint32_t offered = none;
    for (;;) {
        SRange* lowest = nullptr;
        for (SRange& range : m_ranges) {
            if (range.first != range.last &&
                (lowest == nullptr || range.first->position < lowest->first->position)) {
                lowest = &range;
            }
        }
        if (lowest == nullptr) {
            return none;
        }
        const SEnd& end = *lowest->first++;
        if (end.position != offered && (near(end, a) || near(end, b))) {
            offered = end.position;
            if (accept(end.position)) {
                return end.position;
            }
        }
    }
}

} // namespace LibStrokeset
