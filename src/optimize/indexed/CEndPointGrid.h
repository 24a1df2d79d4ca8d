#pragma once

#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include <Eigen/Core>

namespace LibStrokeset {

/// End points of sub-paths, by list position, filed in a grid of square cells (x and y) so
/// that the ends within a tolerance of a point are found without looking at the others.
/// Searches are conservative: they may meet ends that lie a little farther, never miss one
/// that lies within the tolerance as the float distance measures it.
class CEndPointGrid {
public:
    static constexpr std::uint32_t none = ~std::uint32_t(0);

    /// A filed end point.
    struct SEnd {
        std::uint32_t position;
        float x, y;
    };

    /// Adds p to `ends` as an end of the sub-path at `position` when it is finite: a point
    /// with an infinite or NaN coordinate is at an infinite or NaN distance from every
    /// point, which no tolerance accepts.
    static void addEnd(std::uint32_t position, const Eigen::RowVector3f& p,
                       std::vector<SEnd>& ends);

    /// Files the ends, given in ascending position, in cells fitted to them, for a finite
    /// positive tolerance.
    CEndPointGrid(float tolerance, const std::vector<SEnd>& ends);
    /// Files other ends, in ascending position, in the cells of `cells`.
    CEndPointGrid(const CEndPointGrid& cells, const std::vector<SEnd>& ends);

    /// Offers, in ascending position, every position above `after` that has an end filed in
    /// one of the grids (which share their cells) near `a` or `b` to `accept` until it
    /// answers true, and returns that position; none when no offer was accepted.
    template <class Accept>
    static std::uint32_t firstAfter(std::initializer_list<const CEndPointGrid*> grids,
                                    const Eigen::RowVector3f& a, const Eigen::RowVector3f& b,
                                    std::uint32_t after, Accept accept);

    /// Calls `visit(position)` for every filed end near p, in no particular order.
    template <class Visit> void forEachNear(const Eigen::RowVector3f& p, Visit visit) const;
    /// Puts ends in the order of this grid's cells, so that searches around them one after
    /// the other read nearby memory.
    void sortByCell(std::vector<SEnd>& ends) const;
    /// Marks every position that has a filed end near a filed end of a later position;
    /// stops early when the flag is set.
    void markNearLater(std::vector<bool>& marks, const std::atomic<bool>& aborted) const;

private:
    /// The ends of one cell from some position on.
    struct SRange {
        const SEnd* first;
        const SEnd* last;
    };

    void chooseCells(const std::vector<SEnd>& ends);
    /// Cells of side `size` over the whole box of the ends.
    void coverAll(const std::vector<SEnd>& ends, double size);
    void file(const std::vector<SEnd>& ends);
    /// The sum over the cells of the square of their ends: the ends a search meets, times
    /// the ends.
    double crowding() const;
    /// The row-major number of the cell of a point.
    std::uint64_t cellNumber(float x, float y) const;
    /// The ends filed in a cell.
    SRange cellRange(std::uint64_t cell) const;
    /// The cell column (axis 0) or row (axis 1) of a coordinate.
    std::uint32_t cellOf(int axis, double coordinate) const;
    /// Whether an end may lie within the tolerance of p.
    bool near(const SEnd& end, const Eigen::RowVector3f& p) const;
    /// Adds the cells that may hold ends within the tolerance of p, from position `from`
    /// on, to `ranges`.
    void collect(const Eigen::RowVector3f& p, std::uint32_t from,
                 std::vector<SRange>& ranges) const;

    /// How far apart two coordinates can lie on one axis when their float distance is
    /// below the tolerance, with room for rounding.
    double m_reach;
    double m_cellSize = 1.0;
    double m_perCell = 1.0;
    double m_origin[2] = {0.0, 0.0};
    std::uint32_t m_cells[2] = {1, 1};
    /// The ends, cell after cell (row-major), each cell in ascending position; the ends of
    /// cell c are m_ends[m_cellStarts[c]] .. m_ends[m_cellStarts[c + 1] - 1].
    std::vector<SEnd> m_ends;
    std::vector<std::uint32_t> m_cellStarts;
    /// Instead, when the ends are few for the cells: the cell of each end.
    std::vector<std::uint64_t> m_sparseCells;
    mutable std::vector<SRange> m_scratch;
};

template <class Accept>
std::uint32_t CEndPointGrid::firstAfter(std::initializer_list<const CEndPointGrid*> grids,
                                        const Eigen::RowVector3f& a, const Eigen::RowVector3f& b,
                                        std::uint32_t after, Accept accept) {
    const CEndPointGrid& cells = **grids.begin();
    std::vector<SRange>& ranges = cells.m_scratch;
    ranges.clear();
    for (const CEndPointGrid* grid : grids) {
        grid->collect(a, after + 1, ranges);
        grid->collect(b, after + 1, ranges);
    }
    // Merge the cells' ascending runs; a position met twice (both ends filed, two cells,
    // two grids) is offered once.
    std::uint32_t offered = none;
    for (;;) {
        SRange* lowest = nullptr;
        for (SRange& range : ranges) {
            if (range.first != range.last &&
                (lowest == nullptr || range.first->position < lowest->first->position)) {
                lowest = &range;
            }
        }
        if (lowest == nullptr) {
            return none;
        }
        const SEnd& end = *lowest->first++;
        if (end.position != offered && (cells.near(end, a) || cells.near(end, b))) {
            offered = end.position;
            if (accept(end.position)) {
                return end.position;
            }
        }
    }
}

template <class Visit>
void CEndPointGrid::forEachNear(const Eigen::RowVector3f& p, Visit visit) const {
    std::vector<SRange>& ranges = m_scratch;
    ranges.clear();
    collect(p, 0, ranges);
    for (const SRange& range : ranges) {
        for (const SEnd* end = range.first; end != range.last; ++end) {
            if (near(*end, p)) {
                visit(end->position);
            }
        }
    }
}

} // namespace LibStrokeset
