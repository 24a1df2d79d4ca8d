#include "optimize/indexed/CJumpTree.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "optimize/common/PollInterval.h"

namespace LibStrokeset {

namespace {

bool finite(const Eigen::RowVector3f& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y()) && std::isfinite(p.z());
}

bool hasNaN(const Eigen::RowVector3f& p) {
    return std::isnan(p.x()) || std::isnan(p.y()) || std::isnan(p.z());
}

} // namespace

CJumpTree::CFiler::CFiler(std::size_t entries) { m_points.reserve(2 * entries); }

void CJumpTree::CFiler::add(const SJumpEntry& entry) {
    const std::size_t position = m_count++;
    if (!entry.hasEnds) {
        return;
    }
    const auto index = static_cast<std::uint32_t>(position);
    const std::size_t before = m_points.size();
    if (finite(entry.start)) {
        m_points.push_back(
            {{entry.start.x(), entry.start.y(), entry.start.z()}, entry.end, index, 0});
    }
    if (finite(entry.end) && !hasNaN(entry.start) && entry.end != entry.start) {
        m_points.push_back(
            {{entry.end.x(), entry.end.y(), entry.end.z()}, entry.start, index, isEndFlag});
    }
    if (m_points.size() == before) {
        m_unfiled.push_back({position, entry.start, entry.end});
    }
}

CJumpTree::CFiler CJumpTree::filed(const std::vector<SJumpEntry>& entries) {
    CFiler filer(entries.size());
    for (const SJumpEntry& entry : entries) {
        filer.add(entry);
    }
    return filer;
}

CJumpTree::CJumpTree(const std::vector<SJumpEntry>& entries, const std::atomic<bool>& aborted,
                     std::uint32_t leafSize)
    : CJumpTree(filed(entries), aborted, leafSize) {}

CJumpTree::CJumpTree(CFiler&& filer, const std::atomic<bool>& aborted, std::uint32_t leafSize)
    : m_aborted(aborted), m_leafSize(std::max<std::uint32_t>(leafSize, 1)),
      m_points(std::move(filer.m_points)), m_unfiled(std::move(filer.m_unfiled)),
      m_pointsOf(filer.m_count, {none, none}) {
    buildTree();
}

void CJumpTree::buildTree() {
    if (m_points.empty()) {
        return;
    }
    // Median splits keep the tree balanced: with `leaves` a power of two such that no leaf
    // holds more than the leaf size, every node fits a heap of 2 leaves - 1 nodes.
    std::size_t leaves = 1;
    while (leaves * m_leafSize < m_points.size()) {
        leaves *= 2;
    }
    const std::size_t nodes = 2 * leaves;
    m_nodes.resize(nodes);
    m_regions.resize(nodes);
    const auto count = static_cast<std::uint32_t>(m_points.size());
    build(0, 0, count, boxOf(0, count),
          {{-INFINITY, -INFINITY, -INFINITY}, {INFINITY, INFINITY, INFINITY}});
    for (std::uint32_t slot = 0; slot < m_points.size() && !m_aborted.load(); ++slot) {
        std::array<std::uint32_t, 2>& points = m_pointsOf[m_points[slot].entry];
        points[points[0] == none ? 0 : 1] = slot;
    }
}

void CJumpTree::build(std::size_t node, std::uint32_t first, std::uint32_t last, SBox cell,
                      SBox region) {
    m_regions[node] = region;
    // A build over millions of points takes long: the flag ends it, leaving a tree that
    // must not be searched.
    if (last - first > pollEvery && m_aborted.load()) {
        return;
    }
    m_nodes[node].first = first;
    m_nodes[node].last = last;
    // A leaf counts its points, an inner node its children that still hold any.
    m_nodes[node].remaining = last - first <= m_leafSize ? last - first : 2;
    SBox& box = m_nodes[node].box;
    if (last - first <= m_leafSize) {
        box = boxOf(first, last);
        return;
    }
    // Split the widest axis of the cell at the median; the children's boxes make the
    // node's.
    int axis = 0;
    for (int a = 1; a < 3; ++a) {
        if (static_cast<double>(cell.high[a]) - cell.low[a] >
            static_cast<double>(cell.high[axis]) - cell.low[axis]) {
            axis = a;
        }
    }
    const std::uint32_t middle = first + (last - first) / 2;
    std::nth_element(
        m_points.begin() + first, m_points.begin() + middle, m_points.begin() + last,
        [axis](const SPoint& a, const SPoint& b) { return a.position[axis] < b.position[axis]; });
    const float split = m_points[middle].position[axis];
    SBox lowCell = cell, highCell = cell, lowRegion = region, highRegion = region;
    lowCell.high[axis] = highCell.low[axis] = split;
    lowRegion.high[axis] = highRegion.low[axis] = split;
    build(2 * node + 1, first, middle, lowCell, lowRegion);
    build(2 * node + 2, middle, last, highCell, highRegion);
    const SBox& low = m_nodes[2 * node + 1].box;
    const SBox& high = m_nodes[2 * node + 2].box;
    for (int a = 0; a < 3; ++a) {
        box.low[a] = std::min(low.low[a], high.low[a]);
        box.high[a] = std::max(low.high[a], high.high[a]);
    }
}

CJumpTree::SBox CJumpTree::boxOf(std::uint32_t first, std::uint32_t last) const {
    SBox box;
    for (int axis = 0; axis < 3; ++axis) {
        box.low[axis] = box.high[axis] = m_points[first].position[axis];
    }
    for (std::uint32_t i = first; i < last; ++i) {
        for (int axis = 0; axis < 3; ++axis) {
            box.low[axis] = std::min(box.low[axis], m_points[i].position[axis]);
            box.high[axis] = std::max(box.high[axis], m_points[i].position[axis]);
        }
    }
    return box;
}

std::size_t CJumpTree::leafOf(std::uint32_t slot) const {
    // The build's own halving, followed down to the slot.
    std::size_t node = 0;
    std::uint32_t first = 0, last = static_cast<std::uint32_t>(m_points.size());
    while (last - first > m_leafSize) {
        const std::uint32_t middle = first + (last - first) / 2;
        const bool low = slot < middle;
        node = 2 * node + (low ? 1 : 2);
        (low ? last : first) = middle;
    }
    return node;
}

bool CJumpTree::isLeaf(std::size_t node) const {
    return m_nodes[node].last - m_nodes[node].first <= m_leafSize;
}

void CJumpTree::remove(std::size_t entry) {
    for (const std::uint32_t slot : m_pointsOf[entry]) {
        if (slot == none || (m_points[slot].flags & removedFlag) != 0) {
            continue;
        }
        m_points[slot].flags |= removedFlag;
        // Only a subtree that empties changes its parent's count.
        std::size_t node = leafOf(slot);
        while (--m_nodes[node].remaining == 0 && node != 0) {
            node = (node - 1) / 2;
        }
    }
}

bool CJumpTree::exitOf(std::size_t entry, bool reversed, Eigen::RowVector3f& exit) const {
    // Forwards an entry is left at its end, reversed at its start.
    const std::uint32_t slot = m_pointsOf[entry][0];
    if (slot != none) {
        const SPoint& point = m_points[slot];
        const bool isEnd = (point.flags & isEndFlag) != 0;
        exit = isEnd != reversed ? positionOf(point) : point.other;
        return true;
    }
    const auto unfiled = std::lower_bound(
        m_unfiled.begin(), m_unfiled.end(), entry,
        [](const SUnfiled& some, std::size_t position) { return some.entry < position; });
    if (unfiled == m_unfiled.end() || unfiled->entry != entry) {
        return false;
    }
    exit = reversed ? unfiled->start : unfiled->end;
    return true;
}

double CJumpTree::gapSquared(std::size_t node, const double from[3]) const {
    const SBox& box = m_nodes[node].box;
    double sum = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
        const double gap = std::max({0.0, box.low[axis] - from[axis], from[axis] - box.high[axis]});
        sum += gap * gap;
    }
    return sum;
}

double CJumpTree::borderSquared(std::size_t node, const double from[3]) const {
    const SBox& region = m_regions[node];
    double border = INFINITY;
    for (int axis = 0; axis < 3; ++axis) {
        border = std::min({border, from[axis] - region.low[axis], region.high[axis] - from[axis]});
    }
    return border * border;
}

bool CJumpTree::cannotWin(double gapSquared, const SJumpChoice& choice) {
    // The gap to the box bounds the real distance to every point in it. The float distance
    // rounds each difference, square, sum and root by at most 2^-24 relative, and squares
    // that underflow lose at most 2^-150 each: it is never below real distance (1 - 2^-22)
    // - 2^-74. A box whose gap, less 2^-20 of it, is more than 2^-70 beyond the choice
    // holds no point as near as the choice, with room to spare for the rounding here.
    // A jump as long as the choice may still win by coming earlier, so only a longer one
    // rules a box out; the choice starts at FLT_MAX, which no jump reaches.
    constexpr double shrink = (1.0 - 0x1p-20) * (1.0 - 0x1p-20);
    const double reach = static_cast<double>(choice.length) + 0x1p-70;
    return gapSquared * shrink > reach * reach;
}

void CJumpTree::searchLeaf(std::size_t node, const Eigen::RowVector3f& from,
                           SJumpChoice& choice) const {
    for (std::uint32_t i = m_nodes[node].first; i < m_nodes[node].last; ++i) {
        const SPoint& point = m_points[i];
        if ((point.flags & removedFlag) != 0) {
            continue;
        }
        // Only an entry whose jump to this point is no longer than the choice's can win
        // through it; NaN jumps never win.
        const Eigen::RowVector3f at = positionOf(point);
        if (!(distance(from, at) <= choice.length)) {
            continue;
        }
        if ((point.flags & isEndFlag) != 0) {
            choice.offer(from, point.other, at, point.entry);
        } else {
            choice.offer(from, at, point.other, point.entry);
        }
    }
}

void CJumpTree::searchBelow(std::size_t top, const Eigen::RowVector3f& from, const double at[3],
                            SJumpChoice& choice) const {
    m_stack.clear();
    m_stack.emplace_back(static_cast<std::uint32_t>(top), gapSquared(top, at));
    while (!m_stack.empty()) {
        const auto [node, bound] = m_stack.back();
        m_stack.pop_back();
        if (m_nodes[node].remaining == 0 || cannotWin(bound, choice)) {
            continue;
        }
        if (isLeaf(node)) {
            searchLeaf(node, from, choice);
            continue;
        }
        // The nearer child goes on top, so that it is searched first.
        const std::size_t left = 2 * node + 1, right = 2 * node + 2;
        const double leftBound = gapSquared(left, at), rightBound = gapSquared(right, at);
        const bool leftFirst = leftBound <= rightBound;
        m_stack.emplace_back(static_cast<std::uint32_t>(leftFirst ? right : left),
                             leftFirst ? rightBound : leftBound);
        m_stack.emplace_back(static_cast<std::uint32_t>(leftFirst ? left : right),
                             leftFirst ? leftBound : rightBound);
    }
}

void CJumpTree::offerNearest(const Eigen::RowVector3f& from, std::size_t near,
                             SJumpChoice& choice) const {
    // From an infinite or NaN point every jump is infinite or NaN: none can be taken.
    if (m_points.empty() || !finite(from)) {
        return;
    }
    const double at[3] = {from.x(), from.y(), from.z()};
    std::uint32_t start = none;
    for (const std::uint32_t slot : m_pointsOf[near]) {
        if (slot != none && m_points[slot].position[0] == from.x() &&
            m_points[slot].position[1] == from.y() && m_points[slot].position[2] == from.z()) {
            start = slot;
        }
    }
    if (start == none) {
        searchBelow(0, from, at, choice);
        return;
    }
    // Most next entries lie close: search the leaf of the point first, then the other side
    // of each of its ancestors on the way up, until every point not yet searched lies
    // farther than the choice. A node's points lie in the region that the splits of its
    // ancestors part off, and every point outside is at least as far from `from` as the
    // nearest of those splits.
    std::size_t node = leafOf(start);
    searchLeaf(node, from, choice);
    while (node != 0 && !cannotWin(borderSquared(node, at), choice)) {
        searchBelow(node % 2 == 1 ? node + 1 : node - 1, from, at, choice);
        node = (node - 1) / 2;
    }
}

} // namespace LibStrokeset
