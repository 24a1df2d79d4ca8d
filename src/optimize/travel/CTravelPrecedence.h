#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "optimize/travel/CTravelTour.h"

namespace LibStrokeset {

/// Pairs of items of which the first must be drawn before the second (a contour before the
/// contour around it), and the checks that keep an order, or a tour's moves, within them.
/// The pairs must not form a cycle.
class CTravelPrecedence {
public:
    CTravelPrecedence() = default;
    /// `pairs` are (earlier, later), item numbers below `items`.
    CTravelPrecedence(std::size_t items,
                      const std::vector<std::pair<std::uint32_t, std::uint32_t>>& pairs);

    bool empty() const { return m_pairs == 0; }
    std::size_t pairCount() const { return m_pairs; }
    /// The items that must come before `item`, and those that must come after it.
    const std::vector<std::uint32_t>& earlier(std::uint32_t item) const;
    const std::vector<std::uint32_t>& later(std::uint32_t item) const;

    /// Whether the order (every item once) keeps every pair.
    bool keptBy(const std::vector<std::uint32_t>& order) const;
    /// The order with every item that comes too soon held back to just after the last item
    /// that must precede it; everything else keeps its place. `order` holds every item once.
    std::vector<std::uint32_t> repaired(const std::vector<std::uint32_t>& order) const;

    /// Whether tour.reverse(first, last) keeps every pair; decided before reversing. Tour
    /// items are the numbers here; the gap has no pairs.
    bool allowsReversal(const CTravelTour& tour, std::size_t first, std::size_t last) const;
    /// Whether the pairs of the given items hold in the tour as it is.
    bool keptAround(const CTravelTour& tour, const std::uint32_t* items, std::size_t count) const;

private:
    std::vector<std::vector<std::uint32_t>> m_earlier, m_later;
    std::size_t m_pairs = 0;
    static const std::vector<std::uint32_t> s_none;
};

} // namespace LibStrokeset
