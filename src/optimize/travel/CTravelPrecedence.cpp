#include "optimize/travel/CTravelPrecedence.h"

namespace LibStrokeset {

const std::vector<std::uint32_t> CTravelPrecedence::s_none;

CTravelPrecedence::CTravelPrecedence(
    std::size_t items, const std::vector<std::pair<std::uint32_t, std::uint32_t>>& pairs)
    : m_earlier(items), m_later(items), m_pairs(pairs.size()) {
    for (const auto& [first, second] : pairs) {
        m_later[first].push_back(second);
        m_earlier[second].push_back(first);
    }
}

const std::vector<std::uint32_t>& CTravelPrecedence::earlier(std::uint32_t item) const {
    return item < m_earlier.size() ? m_earlier[item] : s_none;
}

const std::vector<std::uint32_t>& CTravelPrecedence::later(std::uint32_t item) const {
    return item < m_later.size() ? m_later[item] : s_none;
}

bool CTravelPrecedence::keptBy(const std::vector<std::uint32_t>& order) const {
    std::vector<bool> drawn(m_earlier.size(), false);
    for (std::uint32_t item : order) {
        for (std::uint32_t before : earlier(item)) {
            if (!drawn[before]) {
                return false;
            }
        }
        if (item < drawn.size()) {
            drawn[item] = true;
        }
    }
    return true;
}

std::vector<std::uint32_t>
CTravelPrecedence::repaired(const std::vector<std::uint32_t>& order) const {
    std::vector<std::size_t> waiting(m_earlier.size(), 0);
    for (std::size_t item = 0; item < m_earlier.size(); ++item) {
        waiting[item] = m_earlier[item].size();
    }
    std::vector<bool> held(m_earlier.size(), false);
    std::vector<std::uint32_t> result;
    result.reserve(order.size());
    std::vector<std::uint32_t> freed;
    for (std::uint32_t item : order) {
        if (item < waiting.size() && waiting[item] > 0) {
            held[item] = true; // drawn when its last earlier item is
            continue;
        }
        freed.assign(1, item);
        while (!freed.empty()) { // an item frees the held-back items that waited for it
            const std::uint32_t next = freed.back();
            freed.pop_back();
            result.push_back(next);
            const std::vector<std::uint32_t>& after = later(next);
            for (auto it = after.rbegin(); it != after.rend(); ++it) {
                if (--waiting[*it] == 0 && held[*it]) {
                    freed.push_back(*it);
                }
            }
        }
    }
    return result;
}

bool CTravelPrecedence::allowsReversal(const CTravelTour& tour, std::size_t first,
                                       std::size_t last) const {
    if (empty()) {
        return true;
    }
    // A reversal turns around the order of the pairs with both items in the stretch of the
    // path it turns: the block when the gap is outside it, everything outside it otherwise.
    const auto [from, count] = tour.reversedBlock(first, last);
    const std::size_t n = tour.size();
    const auto inBlock = [&, from = from, count = count](std::uint32_t item) {
        return (tour.positionOf(item) + n - from) % n < count;
    };
    std::size_t touching = 0, inside = 0;
    for (std::size_t k = 0; k < count; ++k) {
        const std::uint32_t item = tour.itemAt(from + k);
        for (const std::vector<std::uint32_t>* partners : {&earlier(item), &later(item)}) {
            touching += partners->size();
            for (std::uint32_t partner : *partners) {
                inside += inBlock(partner) ? 1 : 0;
            }
        }
    }
    if (!inBlock(tour.gap())) {
        return inside == 0;
    }
    // Pairs with both items outside the block: all pairs less those that touch it (a pair
    // inside it was counted from both its items).
    return m_pairs == touching - inside / 2;
}

bool CTravelPrecedence::keptAround(const CTravelTour& tour, const std::uint32_t* items,
                                   std::size_t count) const {
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t rank = tour.rankOf(items[k]);
        for (std::uint32_t before : earlier(items[k])) {
            if (tour.rankOf(before) > rank) {
                return false;
            }
        }
        for (std::uint32_t after : later(items[k])) {
            if (tour.rankOf(after) < rank) {
                return false;
            }
        }
    }
    return true;
}

} // namespace LibStrokeset
