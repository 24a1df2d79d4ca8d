#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include <Eigen/Core>

#include "optimize/travel/CTravelTour.h"

namespace LibStrokeset {

/// An order of items built from their shortest jumps first (greedy matching): the candidate
/// jumps between ends that lie near each other are taken shortest first, each end taking at
/// most one and no jump closing a loop; the chains this leaves are then linked nearest end
/// first. On scattered items this start is often a tenth shorter than the nearest-neighbour
/// order, whose late jumps span the drawing, and the refinement has that much less to do.
///
/// An item whose start and end coincide (a dot, a closed path) offers its point twice. Ends
/// that are not finite take no jump; their items are linked in with the chains.
class CGreedyEdgeOrder {
public:
    CGreedyEdgeOrder(const std::vector<Eigen::RowVector3f>& starts,
                     const std::vector<Eigen::RowVector3f>& ends, const std::atomic<bool>& aborted);

    /// Every item once, the first chain starting at the end nearest `origin` (without one,
    /// the first chain found); empty when the flag stopped the work.
    std::vector<CTravelTour::SStep> order(const Eigen::RowVector3f* origin) const;

private:
    static constexpr std::uint32_t none = ~std::uint32_t(0);

    /// The chains of items the matching leaves, each from one free end to the other.
    std::vector<std::vector<CTravelTour::SStep>> chains() const;
    void match();
    std::uint32_t root(std::uint32_t item);

    const std::vector<Eigen::RowVector3f>& m_starts;
    const std::vector<Eigen::RowVector3f>& m_ends;
    const std::atomic<bool>& m_aborted;
    bool m_complete = false;
    /// By end (2 item for the start, 2 item + 1 for the end): the end its jump goes to.
    std::vector<std::uint32_t> m_linked;
    /// Items joined so far, as a union-find forest.
    std::vector<std::uint32_t> m_parent;
};

} // namespace LibStrokeset
