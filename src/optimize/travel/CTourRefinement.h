#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <vector>

#include "optimize/travel/CBlockedTour.h"
#include "optimize/travel/CEndNeighbours.h"
#include "optimize/travel/CTravelPrecedence.h"
#include "optimize/travel/CTravelTour.h"

namespace LibStrokeset {

/// The moves a refinement applied, by kind.
struct STourMoveCounts {
    unsigned long long twoOpt = 0;
    unsigned long long orOpt = 0;
    unsigned long long insertion = 0;
    /// Kicks kept: each with the moves after it shortened the travel.
    unsigned long long kicks = 0;
};

/// Shortens a tour by local moves tried against the neighbour lists of its items' ends:
/// 2-opt (reverse a run of items so that two ends that lie near each other meet), Or-opt
/// (move a run of one to three items, either way round, next to an item near its end) and
/// segment insertion (move a whole stretch in between, either way round). A move is applied
/// only when it makes the travel strictly shorter, so the tour never grows.
///
/// Items wait in a queue; one whose moves all fail leaves it, and the items next to a
/// changed jump join it again. The run ends when the queue is empty, the deadline on the
/// monotonic clock passes or the abort flag is set. The moves tried depend only on the tour
/// and the lists, so a run that meets no deadline is the same every time.
///
/// `Tour` is CTravelTour, the plain array that the tests compare with, or CBlockedTour,
/// whose moves cost the square root of its size: both answer every call alike, so the run
/// is the same on either. Precedence is checked on CTravelTour only.
template <class Tour> class CTourRefinement {
public:
    /// `poll` is called every few hundred items, before the clock and the flag are read.
    /// With `precedence`, a move that would put an item before one that must precede it is
    /// not made.
    CTourRefinement(Tour& tour, const CEndNeighbours& neighbours, const std::atomic<bool>& aborted,
                    long long deadline, std::function<void()> poll,
                    const CTravelPrecedence* precedence = nullptr);

    /// Returns the number of moves applied.
    unsigned long long run();
    /// At most `kicks` kicks per run instead of two per item: a check that compares runs on
    /// many small inputs still takes some back without paying for all of them.
    void limitKicks(std::size_t kicks) { m_kickLimit = kicks; }
    /// Whether the last run stopped at the deadline.
    bool timedOut() const { return m_timedOut; }

    /// The moves applied, by kind, over every run.
    const STourMoveCounts& moveCounts() const { return m_counts; }

private:
    /// The ways an end of an item can be met: as its entry, as its exit, or both (a dot, or a
    /// path whose ends coincide).
    bool isExit(std::uint32_t item, unsigned side) const;
    bool isEntry(std::uint32_t item, unsigned side) const;
    const Eigen::RowVector3f& point(std::uint32_t endPoint) const;

    /// Reads the flag and the clock; true when the run must end.
    bool mustStop();
    /// Improves the queued items until the queue is empty or the run must end.
    unsigned long long drain();
    /// Once no move is left: kicks that change the order a little, each kept only when the
    /// moves it allows leave the travel shorter than before it, and taken back otherwise.
    unsigned long long perturb();
    bool improve(std::uint32_t item);
    bool tryTwoOpt(std::size_t a, std::size_t b);
    bool tryOrOpt(std::size_t first, std::size_t count, std::size_t near);
    /// Segment insertion, seen along the tour (`forward`) or against it: the jump from the
    /// item at `a` goes to the item at `c` instead, the stretch from c to some d behind it
    /// moves in between, as it runs or turned around (`turned`, then d is the one met),
    /// and the third jump closes the gap it leaves. d comes from the neighbour lists of the
    /// ends the move opens.
    bool tryInsertion(std::size_t a, std::size_t near, bool forward, bool turned);
    /// Which stretch a segment insertion turns around: none, the one moved (C) or the one it
    /// is moved past (B).
    enum class ETurn { eNone, eMoved, eBetween };
    bool tryInsertionAt(std::size_t a, std::size_t c, std::size_t d, bool forward, ETurn turn);
    /// Turns the stretches X (`firstCount` items from `first`) and Y (the `secondCount`
    /// after it) into Y X, turning X or Y around.
    void swapStretches(std::size_t first, std::size_t firstCount, std::size_t secondCount,
                       bool turnFirst, bool turnSecond);
    /// The number of the end by which the pen leaves or enters the item at a position, as
    /// the neighbour lists number it; `none` for the gap.
    std::uint32_t endPointAt(std::size_t position, bool leavingSide, bool forward) const;
    /// The tour as seen in a direction: the next position, and the points through which the
    /// pen leaves and enters the item at a position.
    std::size_t step(std::size_t position, bool forward, std::size_t by = 1) const;
    const Eigen::RowVector3f* leaving(std::size_t position, bool forward) const;
    const Eigen::RowVector3f* entering(std::size_t position, bool forward) const;
    double jumpOnwards(std::size_t position, bool forward) const;
    /// Whether added is shorter than removed by more than rounding noise.
    static bool shortens(double removed, double added);
    void requeue(std::initializer_list<std::size_t> positions);
    /// The precedence checks, which only the array tour takes.
    bool allowsReversal(std::size_t first, std::size_t last) const;
    bool keptAround(const std::uint32_t* items, std::size_t count) const;

    Tour& m_tour;
    const CEndNeighbours& m_neighbours;
    const std::atomic<bool>& m_aborted;
    long long m_deadline;
    std::function<void()> m_poll;
    const CTravelPrecedence* m_precedence;
    bool m_timedOut = false;
    bool m_stopped = false;
    std::size_t m_handled = 0;
    std::size_t m_kickLimit = static_cast<std::size_t>(-1);
    /// How much the moves since the last kick shortened the travel.
    double m_gain = 0.0;
    STourMoveCounts m_counts;
    std::deque<std::uint32_t> m_queue;
    std::vector<bool> m_queued;
};

} // namespace LibStrokeset
