#include "optimize/travel/CConstrainedGreedy.h"

#include <algorithm>
#include <cmath>

namespace LibStrokeset {

namespace {
bool finite(const Eigen::RowVector3f& p) { return p.allFinite(); }
} // namespace

CConstrainedGreedy::CConstrainedGreedy(const std::vector<SJumpEntry>& entries,
                                       const CTravelPrecedence& precedence,
                                       const std::atomic<bool>& aborted)
    : m_entries(entries), m_precedence(precedence), m_aborted(aborted) {
    bool any = false;
    Eigen::Vector2d high = Eigen::Vector2d::Zero();
    for (const SJumpEntry& entry : entries) {
        for (const Eigen::RowVector3f* p : {&entry.start, &entry.end}) {
            if (finite(*p)) {
                const Eigen::Vector2d q(p->x(), p->y());
                m_low = any ? m_low.cwiseMin(q) : q;
                high = any ? high.cwiseMax(q) : q;
                any = true;
            }
        }
    }
    m_side = std::max<std::size_t>(
        1, static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(entries.size())))));
    for (int axis = 0; axis < 2; ++axis) {
        const double extent = high[axis] - m_low[axis];
        m_cell[axis] = extent > 0.0 ? extent / static_cast<double>(m_side) : 1.0;
    }
    m_cells.resize(m_side * m_side);
}

const Eigen::RowVector3f& CConstrainedGreedy::point(const SEnd& end) const {
    return end.atEnd ? m_entries[end.item].end : m_entries[end.item].start;
}

bool CConstrainedGreedy::cellOf(const Eigen::RowVector3f& p, std::size_t& column,
                                std::size_t& row) const {
    if (!finite(p)) {
        return false;
    }
    const auto index = [this](double v, int axis) {
        const double at = std::floor((v - m_low[axis]) / m_cell[axis]);
        return static_cast<std::size_t>(std::clamp(at, 0.0, static_cast<double>(m_side - 1)));
    };
    column = index(p.x(), 0);
    row = index(p.y(), 1);
    return true;
}

void CConstrainedGreedy::free(std::uint32_t item) {
    m_free[item] = true;
    m_lowestFree = std::min(m_lowestFree, item);
    const SJumpEntry& entry = m_entries[item];
    if (!finite(entry.start) || !finite(entry.end)) {
        m_unplaced.push_back(item);
        return;
    }
    std::size_t column = 0, row = 0;
    for (const bool atEnd : {false, true}) {
        if (atEnd && entry.end == entry.start) {
            break; // one point: enter it once
        }
        cellOf(atEnd ? entry.end : entry.start, column, row);
        m_cells[row * m_side + column].push_back({item, atEnd});
    }
}

void CConstrainedGreedy::take(std::uint32_t item) {
    m_free[item] = false;
    const SJumpEntry& entry = m_entries[item];
    std::size_t column = 0, row = 0;
    for (const Eigen::RowVector3f* p : {&entry.start, &entry.end}) {
        if (cellOf(*p, column, row)) {
            std::vector<SEnd>& cell = m_cells[row * m_side + column];
            cell.erase(std::remove_if(cell.begin(), cell.end(),
                                      [item](const SEnd& end) { return end.item == item; }),
                       cell.end());
        }
    }
    m_unplaced.erase(std::remove(m_unplaced.begin(), m_unplaced.end(), item), m_unplaced.end());
    for (std::uint32_t after : m_precedence.later(item)) {
        if (--m_waiting[after] == 0) {
            free(after);
        }
    }
    while (m_lowestFree < m_free.size() && !m_free[m_lowestFree]) {
        ++m_lowestFree;
    }
}

CConstrainedGreedy::SEnd CConstrainedGreedy::nearest(const Eigen::RowVector3f& from) const {
    SEnd best = {m_lowestFree, false};
    double bestJump = 0.0;
    bool found = false;
    const auto consider = [&](const SEnd& end) {
        const double jump = CTravelTour::jump(&from, &point(end));
        if (jump == jump && (!found || jump < bestJump ||
                             (jump == bestJump &&
                              (end.item < best.item || (end.item == best.item && !end.atEnd))))) {
            best = end;
            bestJump = jump;
            found = true;
        }
    };
    std::size_t column = 0, row = 0;
    if (cellOf(from, column, row)) {
        const double step = std::min(m_cell.x(), m_cell.y());
        for (std::size_t ring = 0; ring < m_side; ++ring) {
            // A cell `ring` cells away lies at least ring - 1 cells away from the point.
            if (found && ring > 0 && bestJump <= static_cast<double>(ring - 1) * step) {
                break;
            }
            const std::size_t r0 = row >= ring ? row - ring : 0;
            const std::size_t r1 = std::min(row + ring, m_side - 1);
            const std::size_t c0 = column >= ring ? column - ring : 0;
            const std::size_t c1 = std::min(column + ring, m_side - 1);
            for (std::size_t r = r0; r <= r1; ++r) {
                const bool edgeRow = r + ring == row || r == row + ring;
                for (std::size_t c = c0; c <= c1; ++c) {
                    if (edgeRow || c + ring == column || c == column + ring) {
                        for (const SEnd& end : m_cells[r * m_side + c]) {
                            consider(end);
                        }
                    }
                }
            }
        }
    }
    for (std::uint32_t item : m_unplaced) {
        consider({item, false});
        consider({item, true});
    }
    return best;
}

std::vector<CTravelTour::SStep> CConstrainedGreedy::order(const Eigen::RowVector3f* origin) {
    const auto n = static_cast<std::uint32_t>(m_entries.size());
    m_waiting.assign(n, 0);
    m_free.assign(n, false);
    for (std::uint32_t item = 0; item < n; ++item) {
        m_waiting[item] = m_precedence.earlier(item).size();
    }
    m_lowestFree = n;
    for (std::uint32_t item = 0; item < n; ++item) {
        if (m_waiting[item] == 0) {
            free(item);
        }
    }
    std::vector<CTravelTour::SStep> steps;
    steps.reserve(n);
    Eigen::RowVector3f at = origin != nullptr ? *origin : Eigen::RowVector3f::Zero();
    for (std::uint32_t placed = 0; placed < n; ++placed) {
        if (m_aborted.load()) {
            return {};
        }
        const SEnd next =
            placed == 0 && origin == nullptr ? SEnd{m_lowestFree, false} : nearest(at);
        const SJumpEntry& entry = m_entries[next.item];
        const bool reversed = next.atEnd && !(entry.start == entry.end);
        steps.push_back({next.item, reversed});
        at = reversed ? entry.start : entry.end;
        take(next.item);
    }
    return steps;
}

} // namespace LibStrokeset
