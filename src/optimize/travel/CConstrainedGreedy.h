#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include <Eigen/Core>

#include "optimize/travel/CTravelPrecedence.h"
#include "optimize/travel/CTravelTour.h"
#include "optimize/rules/SJumpEntry.h"

namespace LibStrokeset {

/// The nearest-neighbour order among the items that may be drawn next: an item waits until
/// every item that must precede it is placed. The nearest free end is found in a grid of the
/// waiting-free items' ends, ring by ring; ties go to the lower item, then to its start.
class CConstrainedGreedy {
public:
    CConstrainedGreedy(const std::vector<SJumpEntry>& entries, const CTravelPrecedence& precedence,
                       const std::atomic<bool>& aborted);

    /// The order from `origin` (null: from the lowest item that may go first); empty when
    /// aborted.
    std::vector<CTravelTour::SStep> order(const Eigen::RowVector3f* origin);

private:
    struct SEnd {
        std::uint32_t item;
        bool atEnd;
    };
    const Eigen::RowVector3f& point(const SEnd& end) const;
    /// The grid cell of a point, clamped to the grid; false for a point that is not finite.
    bool cellOf(const Eigen::RowVector3f& p, std::size_t& column, std::size_t& row) const;
    void free(std::uint32_t item);
    void take(std::uint32_t item);
    /// The nearest free end, or one of the lowest free item when no distance compares.
    SEnd nearest(const Eigen::RowVector3f& from) const;

    const std::vector<SJumpEntry>& m_entries;
    const CTravelPrecedence& m_precedence;
    const std::atomic<bool>& m_aborted;
    std::size_t m_side = 1;
    Eigen::Vector2d m_low = Eigen::Vector2d::Zero();
    Eigen::Vector2d m_cell = Eigen::Vector2d::Ones();
    std::vector<std::vector<SEnd>> m_cells;
    /// Free items with an end that is not finite, which no cell holds.
    std::vector<std::uint32_t> m_unplaced;
    std::vector<std::size_t> m_waiting;
    std::vector<bool> m_free;
    /// The lowest free item; the number of items when none is free.
    std::uint32_t m_lowestFree = 0;
};

} // namespace LibStrokeset
