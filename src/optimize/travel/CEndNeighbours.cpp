#include "optimize/travel/CEndNeighbours.h"

#include <algorithm>
#include <cmath>

namespace LibStrokeset {

namespace {
/// Ends read in one cell at most, and rings searched at most, per end.
constexpr std::size_t cellReadLimit = 64;
constexpr std::int64_t ringLimit = 24;

bool finite(const Eigen::RowVector3f& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y()) && std::isfinite(p.z());
}
} // namespace

CEndNeighbours::CEndNeighbours(const std::vector<Eigen::RowVector3f>& starts,
                               const std::vector<Eigen::RowVector3f>& ends, std::size_t perEnd)
    : m_perEnd(perEnd) {
    std::vector<SFiled> filed;
    filed.reserve(2 * starts.size());
    for (std::size_t item = 0; item < starts.size(); ++item) {
        const auto number = static_cast<std::uint32_t>(2 * item);
        if (finite(starts[item])) {
            filed.push_back({number, starts[item].x(), starts[item].y(), starts[item].z()});
        }
        if (finite(ends[item]) && ends[item] != starts[item]) {
            filed.push_back({number + 1, ends[item].x(), ends[item].y(), ends[item].z()});
        }
    }
    m_lists.assign(2 * starts.size() * perEnd, none);
    if (filed.empty()) {
        return;
    }
    file(filed);
    std::vector<std::pair<double, std::uint32_t>> best;
    for (const SFiled& from : m_filed) {
        best.clear();
        search(from, best);
        std::uint32_t* list = &m_lists[from.endPoint * perEnd];
        for (std::size_t k = 0; k < best.size(); ++k) {
            list[k] = best[k].second;
        }
    }
}

void CEndNeighbours::file(const std::vector<SFiled>& filed) {
    double lowX = filed[0].x, highX = lowX, lowY = filed[0].y, highY = lowY;
    for (const SFiled& f : filed) {
        lowX = std::min<double>(lowX, f.x);
        highX = std::max<double>(highX, f.x);
        lowY = std::min<double>(lowY, f.y);
        highY = std::max<double>(highY, f.y);
    }
    // About two ends per cell over the box, at most 2^22 cells.
    const double width = std::max(highX - lowX, 1e-30);
    const double height = std::max(highY - lowY, 1e-30);
    const double cells = std::min(std::max(filed.size() / 2.0, 1.0), 4194304.0);
    m_cellSize = std::max(std::sqrt(width * height / cells), std::max(width, height) / cells);
    m_originX = lowX;
    m_originY = lowY;
    m_columns = std::min<std::int64_t>(static_cast<std::int64_t>(width / m_cellSize) + 1, 4194304);
    m_rows = std::min<std::int64_t>(static_cast<std::int64_t>(height / m_cellSize) + 1,
                                    4194304 / m_columns + 1);
    const std::size_t cellCount = static_cast<std::size_t>(m_columns * m_rows);
    m_cellStarts.assign(cellCount + 1, 0);
    std::vector<std::uint32_t> cellOf(filed.size());
    for (std::size_t k = 0; k < filed.size(); ++k) {
        cellOf[k] = static_cast<std::uint32_t>(row(filed[k].y) * m_columns + column(filed[k].x));
        ++m_cellStarts[cellOf[k] + 1];
    }
    for (std::size_t c = 0; c < cellCount; ++c) {
        m_cellStarts[c + 1] += m_cellStarts[c];
    }
    m_filed.resize(filed.size());
    std::vector<std::uint32_t> next(m_cellStarts.begin(), m_cellStarts.end() - 1);
    for (std::size_t k = 0; k < filed.size(); ++k) {
        m_filed[next[cellOf[k]]++] = filed[k];
    }
}

std::int64_t CEndNeighbours::column(float x) const {
    const auto c = static_cast<std::int64_t>((x - m_originX) / m_cellSize);
    return std::min(std::max<std::int64_t>(c, 0), m_columns - 1);
}

std::int64_t CEndNeighbours::row(float y) const {
    const auto r = static_cast<std::int64_t>((y - m_originY) / m_cellSize);
    return std::min(std::max<std::int64_t>(r, 0), m_rows - 1);
}

void CEndNeighbours::search(const SFiled& from,
                            std::vector<std::pair<double, std::uint32_t>>& best) const {
    const std::int64_t c = column(from.x);
    const std::int64_t r = row(from.y);
    const std::int64_t rings = std::min(std::max(m_columns, m_rows), ringLimit);
    for (std::int64_t ring = 0; ring <= rings; ++ring) {
        // Every end still unread lies at least this far away in x and y.
        const double reach = (ring - 1) * m_cellSize;
        if (best.size() == m_perEnd && reach > 0.0 && best.back().first <= reach * reach) {
            break;
        }
        for (std::int64_t dr = -ring; dr <= ring; ++dr) {
            const bool edgeRow = dr == -ring || dr == ring;
            for (std::int64_t dc = -ring; dc <= ring; dc += edgeRow ? 1 : 2 * ring) {
                searchCell(c + dc, r + dr, from, best);
                if (ring == 0) {
                    break;
                }
            }
        }
    }
}

void CEndNeighbours::searchCell(std::int64_t column, std::int64_t row, const SFiled& from,
                                std::vector<std::pair<double, std::uint32_t>>& best) const {
    if (column < 0 || row < 0 || column >= m_columns || row >= m_rows) {
        return;
    }
    const std::size_t cell = static_cast<std::size_t>(row * m_columns + column);
    const std::uint32_t first = m_cellStarts[cell];
    const std::uint32_t last = std::min<std::uint32_t>(
        m_cellStarts[cell + 1], first + static_cast<std::uint32_t>(cellReadLimit));
    for (std::uint32_t k = first; k < last; ++k) {
        const SFiled& to = m_filed[k];
        if (to.endPoint / 2 == from.endPoint / 2) {
            continue;
        }
        const double dx = static_cast<double>(to.x) - from.x;
        const double dy = static_cast<double>(to.y) - from.y;
        const double dz = static_cast<double>(to.z) - from.z;
        const std::pair<double, std::uint32_t> found(dx * dx + dy * dy + dz * dz, to.endPoint);
        if (best.size() == m_perEnd && !(found < best.back())) {
            continue;
        }
        if (best.size() == m_perEnd) {
            best.pop_back();
        }
        best.insert(std::upper_bound(best.begin(), best.end(), found), found);
    }
}

} // namespace LibStrokeset
