#include "optimize/CJumpTree.h"

#include <algorithm>
#include <cmath>

namespace LibStrokeset {

namespace {

constexpr std::uint32_t none = ~std::uint32_t(0);
constexpr std::uint32_t leafSize = 8;

bool finite(const Eigen::RowVector3f& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y()) && std::isfinite(p.z());
}

bool hasNaN(const Eigen::RowVector3f& p) {
    return std::isnan(p.x()) || std::isnan(p.y()) || std::isnan(p.z());
}

} // namespace

CJumpTree::CJumpTree(const std::vector<SJumpEntry>& entries)
    : m_entries(entries), m_pointsOf(entries.size(), {none, none}),
      m_removed(entries.size(), false) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const SJumpEntry& entry = entries[i];
        if (!entry.hasEnds) {
            continue;
        }
        const auto index = static_cast<std::uint32_t>(i);
        if (finite(entry.start)) {
            m_points.push_back({{entry.start.x(), entry.start.y(), entry.start.z()}, index});
        }
        // An end that equals the start adds nothing.
        if (finite(entry.end) && !hasNaN(entry.start) && entry.end != entry.start) {
            m_points.push_back({{entry.end.x(), entry.end.y(), entry.end.z()}, index});
        }
    }
    m_leafOf.assign(m_points.size(), none);
    if (!m_points.empty()) {
        m_nodes.reserve(4 * m_points.size() / leafSize + 2);
        build(0, static_cast<std::uint32_t>(m_points.size()), none);
    }
    for (std::uint32_t slot = 0; slot < m_points.size(); ++slot) {
        std::array<std::uint32_t, 2>& points = m_pointsOf[m_points[slot].entry];
        points[points[0] == none ? 0 : 1] = slot;
    }
}

std::uint32_t CJumpTree::build(std::uint32_t first, std::uint32_t last, std::uint32_t parent) {
    const auto index = static_cast<std::uint32_t>(m_nodes.size());
    m_nodes.push_back(SNode());
    SNode node{};
    node.first = first;
    node.last = last;
    node.parent = parent;
    node.remaining = last - first;
    node.right = none;
    for (int axis = 0; axis < 3; ++axis) {
        node.low[axis] = m_points[first].position[axis];
        node.high[axis] = m_points[first].position[axis];
    }
    for (std::uint32_t i = first; i < last; ++i) {
        for (int axis = 0; axis < 3; ++axis) {
            node.low[axis] = std::min(node.low[axis], m_points[i].position[axis]);
            node.high[axis] = std::max(node.high[axis], m_points[i].position[axis]);
        }
    }
    if (last - first <= leafSize) {
        for (std::uint32_t i = first; i < last; ++i) {
            m_leafOf[i] = index;
        }
        m_nodes[index] = node;
        return index;
    }
    // Split the widest axis at the median.
    int axis = 0;
    for (int a = 1; a < 3; ++a) {
        if (static_cast<double>(node.high[a]) - node.low[a] >
            static_cast<double>(node.high[axis]) - node.low[axis]) {
            axis = a;
        }
    }
    const std::uint32_t middle = first + (last - first) / 2;
    std::nth_element(
        m_points.begin() + first, m_points.begin() + middle, m_points.begin() + last,
        [axis](const SPoint& a, const SPoint& b) { return a.position[axis] < b.position[axis]; });
    m_nodes[index] = node;
    build(first, middle, index);
    m_nodes[index].right = build(middle, last, index);
    return index;
}

void CJumpTree::remove(std::size_t entry) {
    if (m_removed[entry]) {
        return;
    }
    m_removed[entry] = true;
    for (const std::uint32_t slot : m_pointsOf[entry]) {
        if (slot == none) {
            continue;
        }
        for (std::uint32_t node = m_leafOf[slot]; node != none; node = m_nodes[node].parent) {
            --m_nodes[node].remaining;
        }
    }
}

double CJumpTree::lowerBound(const SNode& node, const double from[3]) {
    // The gap to the box, per axis, bounds the real distance to every point in it. The float
    // distance rounds each difference, square, sum and root by at most 2^-24 relative,
    // and squares that underflow lose at most 2^-150 each: it is never below
    // real distance (1 - 2^-22) - 2^-74. The bound leaves more room than that.
    double sum = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
        const double gap =
            std::max({0.0, node.low[axis] - from[axis], from[axis] - node.high[axis]});
        sum += gap * gap;
    }
    return std::sqrt(sum) * (1.0 - std::ldexp(1.0, -20)) - std::ldexp(1.0, -70);
}

bool CJumpTree::cannotWin(double bound, const SJumpChoice& choice) {
    // A jump as long as the choice may still win by coming earlier, so only a longer one
    // loses; the choice starts at FLT_MAX, which no jump reaches.
    return bound > static_cast<double>(choice.length);
}

void CJumpTree::offerNearest(const Eigen::RowVector3f& from, SJumpChoice& choice) const {
    // From an infinite or NaN point every jump is infinite or NaN: none can be taken.
    if (m_nodes.empty() || !finite(from)) {
        return;
    }
    const double at[3] = {from.x(), from.y(), from.z()};
    m_stack.clear();
    m_stack.emplace_back(0, lowerBound(m_nodes[0], at));
    while (!m_stack.empty()) {
        const auto [index, bound] = m_stack.back();
        m_stack.pop_back();
        const SNode& node = m_nodes[index];
        if (node.remaining == 0 || cannotWin(bound, choice)) {
            continue;
        }
        if (node.right == none) {
            for (std::uint32_t i = node.first; i < node.last; ++i) {
                const std::uint32_t entry = m_points[i].entry;
                if (!m_removed[entry]) {
                    choice.offer(from, m_entries[entry], entry);
                }
            }
            continue;
        }
        // The nearer child goes on top, so that it is searched first.
        const std::uint32_t left = index + 1;
        const double leftBound = lowerBound(m_nodes[left], at);
        const double rightBound = lowerBound(m_nodes[node.right], at);
        if (leftBound <= rightBound) {
            m_stack.emplace_back(node.right, rightBound);
            m_stack.emplace_back(left, leftBound);
        } else {
            m_stack.emplace_back(left, leftBound);
            m_stack.emplace_back(node.right, rightBound);
        }
    }
}

} // namespace LibStrokeset
