#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <vector>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/CSubPath.h>
#include <LibStrokeset/CTravelOptimizationParameters.h>
#include <LibStrokeset/CTravelOptimizationResults.h>

#include "optimize/common/CProgressReporter.h"
#include "optimize/travel/CTravelPenGroups.h"
#include "optimize/travel/CTravelPrecedence.h"
#include "optimize/travel/CTravelTour.h"
#include "optimize/rules/SJumpEntry.h"

namespace LibStrokeset {

/// The work of CStrokeset::optimizeTravel. The collections are split as the jump-distance
/// ordering splits them (a collection per dot); unsupported records stay where they are and
/// cut the rest into stretches, and emptied collections go to the end of their stretch. Each
/// stretch is ordered on its own, pen after pen when pens go together: every pen group
/// starts from the shorter of its nearest-neighbour order and its present order, then is
/// refined and its closed paths rotated, each step keeping only what shortens the travel.
/// Inner first puts every closed path of a stretch after the closed paths inside it: each
/// group starts from the nearest-neighbour order among the paths whose inner ones are drawn,
/// its refinement makes no move that breaks the rule, and a path whose inner ones fell into
/// a later pen group is held back until they are drawn.
class CTravelOrdering {
public:
    CTravelOrdering(std::list<CCollection*>& collections, const std::atomic<bool>& aborted,
                    CProgressReporter& reporter, long long startTime);

    /// Fills everything of the results but the elapsed time; true when the drawing changed.
    bool run(const CTravelOptimizationParameters& parameters, CTravelOptimizationResults& results);

private:
    /// What is decided for one entry of the working sequence.
    struct SPlan {
        bool reversed = false;
        std::size_t rotation = 0;
    };

    bool aborted() const { return m_aborted.load(); }
    /// Orders the entries `group` (positions in m_entries, in drawing order), coming from
    /// `origin` (null: from nowhere), and appends them to m_order; updates `origin`.
    void orderGroup(const std::vector<std::uint32_t>& group, bool& hasOrigin,
                    Eigen::RowVector3f& origin);
    /// The nearest-neighbour order of the entries from the first (with precedence, among
    /// those that may come next, from `origin`); empty when aborted.
    std::vector<CTravelTour::SStep> greedyOrder(const std::vector<SJumpEntry>& entries,
                                                const CTravelPrecedence& precedence,
                                                const Eigen::RowVector3f* origin);
    /// The pairs (inner, outer) of closed paths among the members, in entry numbers.
    std::vector<std::pair<std::uint32_t, std::uint32_t>>
    nestedPairs(const std::vector<std::uint32_t>& members) const;
    /// The pairs of m_nested with both paths in the group, in the group's numbering.
    CTravelPrecedence groupPrecedence(const std::vector<std::uint32_t>& group);
    /// Holds back, in m_order from `from` on, every path drawn before a path inside it.
    void keepNesting(std::size_t from);
    static CTravelTour tourOf(const std::vector<SJumpEntry>& entries,
                              const std::vector<CTravelTour::SStep>& steps,
                              const Eigen::RowVector3f* origin);
    /// The moment the refinement's time runs out, on the monotonic clock.
    long long refinementDeadline() const;
    /// Replaces `tour` by the order of the shortest jumps taken first when that is shorter
    /// and there is time left for the refinement it starts.
    void startFromShortestJumps(const std::vector<SJumpEntry>& entries,
                                const Eigen::RowVector3f* origin, CTravelTour& tour);
    /// Refinement and closed starts, in turns, until neither changes anything.
    void improve(CTravelTour& tour, const std::vector<const CSubPath*>& closed,
                 std::vector<std::size_t>& rotations, const Eigen::RowVector3f* origin,
                 const CTravelPrecedence& precedence);
    /// Appends a bridge between two pen groups as it is planned.
    void placeBridge(const CTravelPenGroups::SGroup& bridge, bool& hasOrigin,
                     Eigen::RowVector3f& origin);
    /// The pen in force before each entry in the present order, and the pens its first and
    /// last points are drawn with.
    void notePens();
    /// Travel and pen changes of m_order with the plans applied.
    double plannedTravel() const;
    unsigned int plannedPenChanges() const;
    void apply(CTravelOptimizationResults& results);

    std::list<CCollection*>& m_collections;
    const std::atomic<bool>& m_aborted;
    CProgressReporter& m_reporter;
    long long m_startTime;
    CTravelOptimizationParameters m_parameters;
    std::vector<SJumpEntry> m_entries;
    std::vector<SPlan> m_plans;
    std::vector<unsigned short> m_penInForce;
    std::vector<CTravelPenGroups::SPens> m_pens;
    std::vector<std::uint32_t> m_order;
    /// Inner first: the nested pairs of the stretch being ordered, whether the present order
    /// breaks any pair, and each entry's number within the group or stretch at hand.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> m_nested;
    bool m_presentBreaksNesting = false;
    std::vector<std::uint32_t> m_localOf;
    unsigned long long m_moves = 0;
    bool m_timedOut = false;
    std::size_t m_placed = 0;
};

/// Whether an entry cuts the drawing into stretches that are ordered apart: an unsupported
/// record. Emptied collections draw nothing and cut nothing.
bool fencesTravel(const SJumpEntry& entry);

/// Pen-up travel through the entries in their order, in double: a jump from each entry with
/// ends to the next one, over emptied collections and never across a fence.
double travelOf(const std::vector<SJumpEntry>& entries);

} // namespace LibStrokeset
