#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

#include "optimize/travel/CEndNeighbours.h"
#include "optimize/travel/CTravelPrecedence.h"
#include "optimize/travel/CTravelTour.h"

namespace LibStrokeset {

/// Shortens a tour by local moves tried against the neighbour lists of its items' ends:
/// 2-opt (reverse a run of items so that two ends that lie near each other meet) and Or-opt
/// (move a run of one to three items, either way round, next to an item near its end).
/// A move is applied only when it makes the travel strictly shorter, so the tour never grows.
///
/// Items wait in a queue; one whose moves all fail leaves it, and the items next to a
/// changed jump join it again. The run ends when the queue is empty, the deadline on the
/// monotonic clock passes or the abort flag is set. The moves tried depend only on the tour
/// and the lists, so a run that meets no deadline is the same every time.
class CTourRefinement {
public:
    /// `poll` is called every few hundred items, before the clock and the flag are read.
    /// With `precedence`, a move that would put an item before one that must precede it is
    /// not made.
    CTourRefinement(CTravelTour& tour, const CEndNeighbours& neighbours,
                    const std::atomic<bool>& aborted, long long deadline,
                    std::function<void()> poll, const CTravelPrecedence* precedence = nullptr);

    /// Returns the number of moves applied.
    unsigned long long run();
    /// Whether the last run stopped at the deadline.
    bool timedOut() const { return m_timedOut; }

private:
    /// The ways an end of an item can be met: as its entry, as its exit, or both (a dot, or a
    /// path whose ends coincide).
    bool isExit(std::uint32_t item, unsigned side) const;
    bool isEntry(std::uint32_t item, unsigned side) const;
    const Eigen::RowVector3f& point(std::uint32_t endPoint) const;

    bool improve(std::uint32_t item);
    bool tryTwoOpt(std::size_t a, std::size_t b);
    bool tryOrOpt(std::size_t first, std::size_t count, std::size_t near);
    /// Whether added is shorter than removed by more than rounding noise.
    static bool shortens(double removed, double added);
    void requeue(std::initializer_list<std::size_t> positions);

    CTravelTour& m_tour;
    const CEndNeighbours& m_neighbours;
    const std::atomic<bool>& m_aborted;
    long long m_deadline;
    std::function<void()> m_poll;
    const CTravelPrecedence* m_precedence;
    bool m_timedOut = false;
    std::deque<std::uint32_t> m_queue;
    std::vector<bool> m_queued;
};

} // namespace LibStrokeset
