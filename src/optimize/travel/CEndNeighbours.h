#pragma once

#include <cstdint>
#include <vector>

#include <Eigen/Core>

namespace LibStrokeset {

/// For every end point of the items of a tour, the nearest end points of other items, found
/// in a grid over x and y: the candidate list that the refinement's moves are tried against.
/// End points are numbered 2 item (start) and 2 item + 1 (end); an end that lies exactly on
/// its start, or has a coordinate that is not finite, is not filed and has no neighbours.
///
/// The lists are good candidates, not a promise: a crowded cell is read only in part and the
/// search gives up far away, so that no input makes the build quadratic.
class CEndNeighbours {
public:
    static constexpr std::uint32_t none = ~std::uint32_t(0);

    CEndNeighbours(const std::vector<Eigen::RowVector3f>& starts,
                   const std::vector<Eigen::RowVector3f>& ends, std::size_t perEnd);

    /// The neighbours of an end point, nearest first; `none` pads a short list.
    const std::uint32_t* of(std::uint32_t endPoint) const { return &m_lists[endPoint * m_perEnd]; }
    std::size_t perEnd() const { return m_perEnd; }

private:
    struct SFiled {
        std::uint32_t endPoint;
        float x, y, z;
    };

    void file(const std::vector<SFiled>& filed);
    std::int64_t column(float x) const;
    std::int64_t row(float y) const;
    void search(const SFiled& from, std::vector<std::pair<double, std::uint32_t>>& best) const;
    void searchCell(std::int64_t column, std::int64_t row, const SFiled& from,
                    std::vector<std::pair<double, std::uint32_t>>& best) const;

    std::size_t m_perEnd;
    double m_originX = 0.0, m_originY = 0.0, m_cellSize = 1.0;
    std::int64_t m_columns = 1, m_rows = 1;
    std::vector<SFiled> m_filed; // cell after cell
    std::vector<std::uint32_t> m_cellStarts;
    std::vector<std::uint32_t> m_lists;
};

} // namespace LibStrokeset
