#include "optimize/indexed/CEndPointGrid.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "optimize/common/PollInterval.h"

namespace LibStrokeset {

namespace {

bool finite(const Eigen::RowVector3f& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y()) && std::isfinite(p.z());
}

/// The lower end and the width of the middle 98% of the values, so that a few far-off
/// points do not make the cells large.
std::pair<double, double> spread(std::vector<float> values) {
    const std::size_t margin = values.size() / 100;
    std::nth_element(values.begin(), values.begin() + margin, values.end());
    const double low = values[margin];
    const std::size_t top = values.size() - 1 - margin;
    std::nth_element(values.begin(), values.begin() + top, values.end());
    return {low, static_cast<double>(values[top]) - low};
}

} // namespace

void CEndPointGrid::addEnd(std::uint32_t position, const Eigen::RowVector3f& p,
                           std::vector<SEnd>& ends) {
    if (finite(p)) {
        ends.push_back({position, p.x(), p.y()});
    }
}

CEndPointGrid::CEndPointGrid(float tolerance, const std::vector<SEnd>& ends)
    // When the float distance of a and b is below the tolerance t (finite coordinates),
    // every axis differs by less than t (1 + 2^-22) unless that difference is below 2^-60,
    // where the squares underflow; the reach covers both with a wide margin.
    : m_reach(static_cast<double>(tolerance) * (1.0 + std::ldexp(1.0, -12)) +
              std::ldexp(1.0, -40)) {
    chooseCells(ends);
    file(ends);
    // Cells fitted to the spread of the whole drawing can be crowded where it is dense,
    // and every search there would meet all of their ends. Then smaller cells over the
    // whole drawing, down to twice the reach, where ends as close cannot be told apart.
    const double average = crowding() / static_cast<double>(std::max<std::size_t>(ends.size(), 1));
    if (average > 32.0 && m_cellSize > 2.0 * m_reach) {
        coverAll(ends, std::max(2.0 * m_reach, m_cellSize / std::sqrt(average / 4.0)));
        file(ends);
    }
}

CEndPointGrid::CEndPointGrid(const CEndPointGrid& cells, const std::vector<SEnd>& ends)
    : m_reach(cells.m_reach), m_cellSize(cells.m_cellSize), m_perCell(cells.m_perCell),
      m_origin{cells.m_origin[0], cells.m_origin[1]}, m_cells{cells.m_cells[0], cells.m_cells[1]} {
    file(ends);
}

void CEndPointGrid::chooseCells(const std::vector<SEnd>& ends) {
    if (ends.empty()) {
        return;
    }
    // About two ends per cell over the middle of the drawing, but never cells narrower than
    // twice the reach, so that a search looks at no more than two cells per axis. Ends
    // outside the middle fall into the border cells.
    std::vector<float> xs, ys;
    xs.reserve(ends.size());
    ys.reserve(ends.size());
    for (const SEnd& end : ends) {
        xs.push_back(end.x);
        ys.push_back(end.y);
    }
    const auto [xLow, xWidth] = spread(std::move(xs));
    const auto [yLow, yWidth] = spread(std::move(ys));
    const double spacing = std::sqrt(2.0 * xWidth * yWidth / static_cast<double>(ends.size()));
    m_cellSize = std::max({2.0 * m_reach, spacing, std::max(xWidth, yWidth) / 4096.0});
    m_perCell = 1.0 / m_cellSize;
    m_origin[0] = xLow;
    m_origin[1] = yLow;
    m_cells[0] = static_cast<std::uint32_t>(xWidth / m_cellSize) + 1;
    m_cells[1] = static_cast<std::uint32_t>(yWidth / m_cellSize) + 1;
}

void CEndPointGrid::coverAll(const std::vector<SEnd>& ends, double size) {
    double low[2] = {INFINITY, INFINITY}, high[2] = {-INFINITY, -INFINITY};
    for (const SEnd& end : ends) {
        low[0] = std::min(low[0], static_cast<double>(end.x));
        high[0] = std::max(high[0], static_cast<double>(end.x));
        low[1] = std::min(low[1], static_cast<double>(end.y));
        high[1] = std::max(high[1], static_cast<double>(end.y));
    }
    // No more than 2^30 cells per axis, so that cell numbers fit 64 bits.
    m_cellSize = std::max({size, (high[0] - low[0]) / 0x1p30, (high[1] - low[1]) / 0x1p30});
    m_perCell = 1.0 / m_cellSize;
    for (int axis = 0; axis < 2; ++axis) {
        m_origin[axis] = low[axis];
        m_cells[axis] = static_cast<std::uint32_t>((high[axis] - low[axis]) / m_cellSize) + 1;
    }
}

double CEndPointGrid::crowding() const {
    double sum = 0.0;
    for (std::size_t c = 0; c + 1 < m_cellStarts.size(); ++c) {
        const double count = m_cellStarts[c + 1] - m_cellStarts[c];
        sum += count * count;
    }
    for (std::size_t i = 0; i < m_sparseCells.size();) {
        std::size_t j = i;
        while (j < m_sparseCells.size() && m_sparseCells[j] == m_sparseCells[i]) {
            ++j;
        }
        sum += static_cast<double>(j - i) * static_cast<double>(j - i);
        i = j;
    }
    return sum;
}

std::uint64_t CEndPointGrid::cellNumber(float x, float y) const {
    return cellOf(0, x) + static_cast<std::uint64_t>(m_cells[0]) * cellOf(1, y);
}

void CEndPointGrid::file(const std::vector<SEnd>& ends) {
    m_ends.clear();
    m_cellStarts.clear();
    m_sparseCells.clear();
    std::vector<std::uint64_t> cellOfEnd(ends.size());
    for (std::size_t i = 0; i < ends.size(); ++i) {
        cellOfEnd[i] = cellNumber(ends[i].x, ends[i].y);
    }
    const double cells = static_cast<double>(m_cells[0]) * static_cast<double>(m_cells[1]);
    if (static_cast<double>(ends.size()) * 4.0 < cells) {
        // Few ends for many cells: the ends sorted by cell, each cell found by a binary
        // search, cost less than a table of every cell. The sort keeps ascending positions
        // within each cell.
        std::vector<std::uint32_t> order(ends.size());
        std::iota(order.begin(), order.end(), 0u);
        std::stable_sort(
            order.begin(), order.end(),
            [&cellOfEnd](std::uint32_t a, std::uint32_t b) { return cellOfEnd[a] < cellOfEnd[b]; });
        m_ends.reserve(ends.size());
        m_sparseCells.reserve(ends.size());
        for (const std::uint32_t i : order) {
            m_ends.push_back(ends[i]);
            m_sparseCells.push_back(cellOfEnd[i]);
        }
        return;
    }
    // A counting sort by cell keeps the ascending positions within each cell.
    m_cellStarts.assign(static_cast<std::size_t>(cells) + 1, 0);
    for (std::size_t i = 0; i < ends.size(); ++i) {
        ++m_cellStarts[cellOfEnd[i] + 1];
    }
    for (std::size_t c = 1; c < m_cellStarts.size(); ++c) {
        m_cellStarts[c] += m_cellStarts[c - 1];
    }
    std::vector<std::uint32_t> fill(m_cellStarts.begin(), m_cellStarts.end() - 1);
    m_ends.resize(ends.size());
    for (std::size_t i = 0; i < ends.size(); ++i) {
        m_ends[fill[cellOfEnd[i]]++] = ends[i];
    }
}

void CEndPointGrid::sortByCell(std::vector<SEnd>& ends) const {
    std::sort(ends.begin(), ends.end(), [this](const SEnd& a, const SEnd& b) {
        return cellNumber(a.x, a.y) < cellNumber(b.x, b.y);
    });
}

void CEndPointGrid::markNearLater(std::vector<bool>& marks,
                                  const std::atomic<bool>& aborted) const {
    std::vector<SRange>& ranges = m_scratch;
    // Cell by cell, so that the neighbours of one end lie close in memory to the next's;
    // the search around an end stops at the first later end near it.
    for (std::size_t i = 0; i < m_ends.size(); ++i) {
        const SEnd& end = m_ends[i];
        if (i % pollEvery == 0 && aborted.load()) {
            return;
        }
        if (marks[end.position]) {
            continue;
        }
        const Eigen::RowVector3f p(end.x, end.y, 0.0f);
        ranges.clear();
        collect(p, end.position + 1, ranges);
        for (const SRange& range : ranges) {
            const SEnd* later = range.first;
            while (later != range.last && !near(*later, p)) {
                ++later;
            }
            if (later != range.last) {
                marks[end.position] = true;
                break;
            }
        }
    }
}

CEndPointGrid::SRange CEndPointGrid::cellRange(std::uint64_t cell) const {
    if (m_cellStarts.empty()) {
        const auto [first, last] =
            std::equal_range(m_sparseCells.begin(), m_sparseCells.end(), cell);
        return {m_ends.data() + (first - m_sparseCells.begin()),
                m_ends.data() + (last - m_sparseCells.begin())};
    }
    return {m_ends.data() + m_cellStarts[cell], m_ends.data() + m_cellStarts[cell + 1]};
}

std::uint32_t CEndPointGrid::cellOf(int axis, double coordinate) const {
    // Rounding down and clamping keep order, so the searches stay conservative.
    const double cell = (coordinate - m_origin[axis]) * m_perCell;
    const auto last = static_cast<double>(m_cells[axis] - 1);
    return cell <= 0.0 ? 0 : cell >= last ? m_cells[axis] - 1 : static_cast<std::uint32_t>(cell);
}

bool CEndPointGrid::near(const SEnd& end, const Eigen::RowVector3f& p) const {
    // Conservative like the cells: false only when an axis differs by more than the reach.
    // A non-finite p is near nothing.
    return std::fabs(static_cast<double>(end.x) - p.x()) <= m_reach &&
           std::fabs(static_cast<double>(end.y) - p.y()) <= m_reach;
}

void CEndPointGrid::collect(const Eigen::RowVector3f& p, std::uint32_t from,
                            std::vector<SRange>& ranges) const {
    if (!finite(p) || m_ends.empty()) {
        return; // nothing lies within a tolerance of it
    }
    const std::uint32_t xLow = cellOf(0, p.x() - m_reach), xHigh = cellOf(0, p.x() + m_reach);
    const std::uint32_t yLow = cellOf(1, p.y() - m_reach), yHigh = cellOf(1, p.y() + m_reach);
    for (std::uint32_t cy = yLow; cy <= yHigh; ++cy) {
        for (std::uint32_t cx = xLow; cx <= xHigh; ++cx) {
            const SRange cell = cellRange(cx + static_cast<std::uint64_t>(m_cells[0]) * cy);
            const SEnd* first = cell.first;
            const SEnd* last = cell.last;
            // Cells hold a few ends: a binary search pays only in crowded ones.
            if (last - first > 16) {
                first = std::lower_bound(first, last, from,
                                         [](const SEnd& end, std::uint32_t position) {
                                             return end.position < position;
                                         });
            } else {
                while (first != last && first->position < from) {
                    ++first;
                }
            }
            if (first != last) {
                ranges.push_back({first, last});
            }
        }
    }
}

} // namespace LibStrokeset
