#include "optimize/travel/CTravelOrdering.h"

#include <algorithm>

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CUnsupportedElementCollection.h>

#include "optimize/travel/CBlockedTour.h"
#include "optimize/travel/CClosedStartRotation.h"
#include "optimize/travel/CConstrainedGreedy.h"
#include "optimize/travel/CContainment.h"
#include "optimize/travel/CEndNeighbours.h"
#include "optimize/travel/CGreedyEdgeOrder.h"
#include "optimize/rules/CGreedyPlacement.h"
#include "optimize/travel/COrientedPath.h"
#include "optimize/travel/CPenChangeCount.h"
#include "optimize/travel/CTourRefinement.h"
#include "optimize/travel/CTravelPenGroups.h"
#include "optimize/common/CWorkingSequence.h"
#include "optimize/common/CollectionCast.h"

namespace LibStrokeset {

namespace {
/// Neighbours tried per end. Below `longListsBelow` items the refinement mostly converges
/// within its time, and long lists find the moves between dense or overlapping strokes that
/// lie beyond the eighth neighbour; above it the time limit ends the run, and short lists
/// let it reach more items.
constexpr std::size_t neighboursPerEnd = 16;
constexpr std::size_t neighboursPerEndWhenLarge = 8;
constexpr std::size_t longListsBelow = 16384;
/// From this many items on, moves on blocks cost less than reading positions from them
/// costs more; both give the same tour.
constexpr std::size_t blockedFrom = 16384;
/// Turns of refinement and closed starts at most; each turn that changes something is
/// strictly shorter, and the rotations settle within a few.
constexpr int mostTurns = 16;
constexpr std::uint32_t notLocal = 0xFFFFFFFFu;

double lengthOf(const std::vector<SJumpEntry>& entries,
                const std::vector<CTravelTour::SStep>& steps, const Eigen::RowVector3f* origin) {
    double total = 0.0;
    const Eigen::RowVector3f* from = origin;
    for (const CTravelTour::SStep& step : steps) {
        const SJumpEntry& entry = entries[step.item];
        total += CTravelTour::jump(from, step.reversed ? &entry.end : &entry.start);
        from = step.reversed ? &entry.start : &entry.end;
    }
    return total;
}
} // namespace

bool fencesTravel(const SJumpEntry& entry) {
    return !entry.hasEnds &&
           collectionCast<CUnsupportedElementCollection>(entry.collection) != nullptr &&
           !entry.collection->isEmpty();
}

double travelOf(const std::vector<SJumpEntry>& entries) {
    double total = 0.0;
    const Eigen::RowVector3f* from = nullptr;
    for (const SJumpEntry& entry : entries) {
        if (fencesTravel(entry)) {
            from = nullptr;
        } else if (entry.hasEnds) {
            total += CTravelTour::jump(from, &entry.start);
            from = &entry.end;
        }
    }
    return total;
}

CTravelOrdering::CTravelOrdering(std::list<CCollection*>& collections,
                                 const std::atomic<bool>& aborted, CProgressReporter& reporter,
                                 long long startTime)
    : m_collections(collections), m_aborted(aborted), m_reporter(reporter), m_startTime(startTime) {
}

bool CTravelOrdering::run(const CTravelOptimizationParameters& parameters,
                          CTravelOptimizationResults& results) {
    m_parameters = parameters;
    m_reporter.call(1, 0.0f);
    const unsigned int pensBefore = CPenChangeCount::of(m_collections);
    results.setPenChangesBefore(pensBefore);
    results.setPenChangesAfter(pensBefore);
    CWorkingSequence sequence;
    if (!sequence.build(m_collections, [this] { return aborted(); })) {
        return false;
    }
    const std::vector<CCollection*>& collections = sequence.entries();
    for (std::size_t i = 0; i < collections.size(); ++i) {
        m_entries.push_back(sequence.isSplitDot(i) ? SJumpEntry::describeSingleDot(collections[i])
                                                   : SJumpEntry::describe(collections[i]));
    }
    notePens();
    const double before = travelOf(m_entries);
    results.setTravelBefore(before);
    results.setTravelAfter(before);
    m_plans.assign(m_entries.size(), SPlan());
    m_localOf.assign(m_entries.size(), notLocal);
    const auto n = static_cast<std::uint32_t>(m_entries.size());
    for (std::uint32_t first = 0; first < n && !aborted();) {
        if (fencesTravel(m_entries[first])) {
            m_order.push_back(first++);
            continue;
        }
        // Collections that draw nothing (emptied ones) go behind the stretch they were in.
        std::vector<std::uint32_t> members, inert;
        std::uint32_t last = first;
        for (; last < n && !fencesTravel(m_entries[last]); ++last) {
            (m_entries[last].hasEnds ? members : inert).push_back(last);
        }
        bool hasOrigin = false;
        Eigen::RowVector3f origin = Eigen::RowVector3f::Zero();
        const std::size_t stretchStart = m_order.size();
        m_nested.clear();
        if (parameters.innerFirst()) {
            m_nested = nestedPairs(members);
            for (const auto& [inner, outer] : m_nested) {
                m_presentBreaksNesting = m_presentBreaksNesting || outer < inner;
            }
        }
        for (const CTravelPenGroups::SGroup& group :
             CTravelPenGroups::of(m_pens, members, parameters.pensTogether())) {
            if (group.bridge) {
                placeBridge(group, hasOrigin, origin);
            } else {
                orderGroup(group.entries, hasOrigin, origin);
            }
        }
        keepNesting(stretchStart);
        m_order.insert(m_order.end(), inert.begin(), inert.end());
        first = last;
    }
    if (aborted()) {
        return false;
    }
    const double after = plannedTravel();
    const unsigned int pensAfter = plannedPenChanges();
    // Pens together put the pen changes first: an order with more of them is no better,
    // however short (paths drawn with several pens can cost changes of their own). Inner
    // first comes before both.
    const bool better = m_presentBreaksNesting ||
                        (parameters.pensTogether()
                             ? pensAfter < pensBefore || (pensAfter == pensBefore && after < before)
                             : after < before);
    if (!better) {
        return false;
    }
    apply(results);
    std::vector<CCollection*> order;
    order.reserve(m_order.size());
    for (std::uint32_t entry : m_order) {
        order.push_back(m_entries[entry].collection);
    }
    sequence.adopt(m_collections, order);
    results.setTravelAfter(after);
    results.setPenChangesAfter(pensAfter);
    results.setAppliedMoves(m_moves);
    results.setRefinementTimedOut(m_timedOut);
    return true;
}

void CTravelOrdering::placeBridge(const CTravelPenGroups::SGroup& bridge, bool& hasOrigin,
                                  Eigen::RowVector3f& origin) {
    const std::uint32_t entry = bridge.entries.front();
    m_plans[entry].reversed = bridge.reversed;
    m_order.push_back(entry);
    origin = bridge.reversed ? m_entries[entry].start : m_entries[entry].end;
    hasOrigin = true;
}

void CTravelOrdering::orderGroup(const std::vector<std::uint32_t>& group, bool& hasOrigin,
                                 Eigen::RowVector3f& origin) {
    if (aborted()) {
        return;
    }
    const Eigen::RowVector3f* from = hasOrigin ? &origin : nullptr;
    std::vector<SJumpEntry> entries;
    std::vector<CTravelTour::SStep> present;
    std::vector<const CSubPath*> closed(group.size(), nullptr);
    for (std::size_t k = 0; k < group.size(); ++k) {
        entries.push_back(m_entries[group[k]]);
        present.push_back({static_cast<std::uint32_t>(k), false});
        const auto* path = collectionCast<CSubPath>(entries[k].collection);
        if (m_parameters.closedStarts() && path != nullptr && COrientedPath::mayRotate(*path)) {
            closed[k] = path;
        }
    }
    // The nearest-neighbour order, unless the present one is shorter already (and keeps the
    // nesting).
    const CTravelPrecedence precedence = groupPrecedence(group);
    std::vector<CTravelTour::SStep> steps = greedyOrder(entries, precedence, from);
    std::vector<std::uint32_t> presentItems(group.size());
    for (std::uint32_t k = 0; k < group.size(); ++k) {
        presentItems[k] = k;
    }
    if (steps.empty() || (lengthOf(entries, present, from) < lengthOf(entries, steps, from) &&
                          precedence.keptBy(presentItems))) {
        steps = present;
    }
    CTravelTour tour = tourOf(entries, steps, from);
    if (m_parameters.refine() && precedence.empty()) {
        startFromShortestJumps(entries, from, tour);
    }
    std::vector<std::size_t> rotations(group.size(), 0);
    improve(tour, closed, rotations, from, precedence);
    // Closed paths entered elsewhere can make another nearest-neighbour order shorter still.
    const bool rotated = std::any_of(rotations.begin(), rotations.end(),
                                     [](std::size_t rotation) { return rotation != 0; });
    for (int again = 0; again < 3 && rotated && !aborted(); ++again) {
        for (std::uint32_t k = 0; k < entries.size(); ++k) {
            entries[k].start = tour.start(k);
            entries[k].end = tour.end(k);
        }
        steps = greedyOrder(entries, precedence, from);
        if (steps.empty()) {
            break;
        }
        CTravelTour other = tourOf(entries, steps, from);
        std::vector<std::size_t> otherRotations = rotations;
        improve(other, closed, otherRotations, from, precedence);
        if (!(other.length() < tour.length())) {
            break;
        }
        tour = std::move(other);
        rotations = std::move(otherRotations);
    }
    const std::vector<CTravelTour::SStep> path = tour.path();
    for (const CTravelTour::SStep& step : path) {
        m_plans[group[step.item]] = {step.reversed, rotations[step.item]};
        m_order.push_back(group[step.item]);
    }
    origin = *tour.exit(path.back().item);
    hasOrigin = true;
    m_placed += group.size();
    m_reporter.report(1, m_placed, static_cast<float>(m_entries.size()));
}

std::vector<CTravelTour::SStep> CTravelOrdering::greedyOrder(const std::vector<SJumpEntry>& entries,
                                                             const CTravelPrecedence& precedence,
                                                             const Eigen::RowVector3f* origin) {
    if (!precedence.empty()) {
        return CConstrainedGreedy(entries, precedence, m_aborted).order(origin);
    }
    const SPlacement placement = CGreedyPlacement(m_aborted, [](unsigned long long) {
                                 }).place(entries, EOptimizerEngine::eIndexed);
    std::vector<CTravelTour::SStep> steps;
    if (placement.complete) {
        for (std::size_t i = 0; i < placement.order.size(); ++i) {
            steps.push_back(
                {static_cast<std::uint32_t>(placement.order[i]), placement.reversed[i]});
        }
    }
    return steps;
}

CTravelTour CTravelOrdering::tourOf(const std::vector<SJumpEntry>& entries,
                                    const std::vector<CTravelTour::SStep>& steps,
                                    const Eigen::RowVector3f* origin) {
    std::vector<Eigen::RowVector3f> starts, ends;
    for (const SJumpEntry& entry : entries) {
        starts.push_back(entry.start);
        ends.push_back(entry.end);
    }
    return CTravelTour(std::move(starts), std::move(ends), steps, origin);
}

long long CTravelOrdering::refinementDeadline() const {
    // A limit that is not greater than 0 (NaN among them) gives no time at all.
    const double seconds = m_parameters.refinementTimeLimit();
    return m_startTime + (seconds > 0.0 ? static_cast<long long>(std::min(seconds, 1e9) * 1e9) : 0);
}

void CTravelOrdering::startFromShortestJumps(const std::vector<SJumpEntry>& entries,
                                             const Eigen::RowVector3f* origin, CTravelTour& tour) {
    // Building the order is part of the refinement's work: it waits for none past its time.
    if (monotonicNanoseconds() > refinementDeadline()) {
        return;
    }
    std::vector<Eigen::RowVector3f> starts, ends;
    for (const SJumpEntry& entry : entries) {
        starts.push_back(entry.start);
        ends.push_back(entry.end);
    }
    const std::vector<CTravelTour::SStep> matched =
        CGreedyEdgeOrder(starts, ends, m_aborted).order(origin);
    if (!matched.empty() && lengthOf(entries, matched, origin) < tour.length()) {
        tour = tourOf(entries, matched, origin);
    }
}

void CTravelOrdering::improve(CTravelTour& tour, const std::vector<const CSubPath*>& closed,
                              std::vector<std::size_t>& rotations, const Eigen::RowVector3f* origin,
                              const CTravelPrecedence& precedence) {
    const bool refine = m_parameters.refine();
    const long long deadline = refinementDeadline();
    const long long limit = deadline - m_startTime;
    const auto poll = [this, limit] {
        m_reporter.report(2, static_cast<unsigned long long>(monotonicNanoseconds() - m_startTime),
                          static_cast<float>(limit));
    };
    // Before the neighbour lists, which take long on large drawings, and after them.
    const auto timeIsUp = [this, deadline] {
        m_timedOut = m_timedOut || monotonicNanoseconds() > deadline;
        return m_timedOut;
    };
    for (int turn = 0; turn < mostTurns && !aborted(); ++turn) {
        if (refine && !timeIsUp()) {
            std::vector<Eigen::RowVector3f> starts, ends;
            for (std::uint32_t item = 0; item < tour.gap(); ++item) {
                starts.push_back(tour.start(item));
                ends.push_back(tour.end(item));
            }
            const CEndNeighbours neighbours(
                starts, ends,
                tour.size() < longListsBelow ? neighboursPerEnd : neighboursPerEndWhenLarge);
            if (timeIsUp()) {
                // the lists took the rest of the time
            } else if (precedence.empty() && tour.size() >= blockedFrom) {
                // The moves run on blocks, where a long move costs little; the same tour
                // comes back.
                CBlockedTour blocked(starts, ends, tour.path(), origin);
                CTourRefinement refinement(blocked, neighbours, m_aborted, deadline, poll);
                const unsigned long long moves = refinement.run();
                m_moves += moves;
                m_timedOut = m_timedOut || refinement.timedOut();
                if (moves > 0) {
                    tour = CTravelTour(std::move(starts), std::move(ends), blocked.path(), origin);
                }
            } else {
                CTourRefinement refinement(tour, neighbours, m_aborted, deadline, poll,
                                           precedence.empty() ? nullptr : &precedence);
                m_moves += refinement.run();
                m_timedOut = m_timedOut || refinement.timedOut();
            }
        }
        if (!m_parameters.closedStarts() ||
            CClosedStartRotation(closed, rotations).run(tour, origin) == 0) {
            break;
        }
        m_reporter.report(3, static_cast<unsigned long long>(turn + 1), mostTurns);
    }
}

std::vector<std::pair<std::uint32_t, std::uint32_t>>
CTravelOrdering::nestedPairs(const std::vector<std::uint32_t>& members) const {
    std::vector<CContourPolygon> contours;
    std::vector<std::uint32_t> entryOf;
    for (std::uint32_t entry : members) {
        const auto* path = collectionCast<CSubPath>(m_entries[entry].collection);
        if (path == nullptr || path->isEmpty() || !COrientedPath::mayRotate(*path)) {
            continue;
        }
        std::vector<Eigen::Vector2d> points;
        points.reserve(path->getLines().size());
        for (const CLine& line : path->getLines()) {
            points.emplace_back(line.getPosition().x(), line.getPosition().y());
        }
        contours.emplace_back(std::move(points));
        entryOf.push_back(entry);
    }
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs =
        CContainment::of(contours, EContainmentRoute::eIndexed);
    for (auto& [inner, outer] : pairs) {
        inner = entryOf[inner];
        outer = entryOf[outer];
    }
    return pairs;
}

CTravelPrecedence CTravelOrdering::groupPrecedence(const std::vector<std::uint32_t>& group) {
    if (m_nested.empty()) {
        return CTravelPrecedence();
    }
    for (std::uint32_t k = 0; k < group.size(); ++k) {
        m_localOf[group[k]] = k;
    }
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs;
    for (const auto& [inner, outer] : m_nested) {
        if (m_localOf[inner] != notLocal && m_localOf[outer] != notLocal) {
            pairs.emplace_back(m_localOf[inner], m_localOf[outer]);
        }
    }
    for (std::uint32_t entry : group) {
        m_localOf[entry] = notLocal;
    }
    return CTravelPrecedence(group.size(), pairs);
}

void CTravelOrdering::keepNesting(std::size_t from) {
    if (m_nested.empty()) {
        return;
    }
    // Pens together or a bridge can put a path's inner ones in a later group.
    const std::vector<std::uint32_t> stretch(m_order.begin() + static_cast<std::ptrdiff_t>(from),
                                             m_order.end());
    std::vector<std::uint32_t> local(stretch.size());
    for (std::uint32_t k = 0; k < stretch.size(); ++k) {
        m_localOf[stretch[k]] = k;
        local[k] = k;
    }
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs;
    for (const auto& [inner, outer] : m_nested) {
        pairs.emplace_back(m_localOf[inner], m_localOf[outer]);
    }
    for (std::uint32_t entry : stretch) {
        m_localOf[entry] = notLocal;
    }
    const CTravelPrecedence precedence(stretch.size(), pairs);
    if (precedence.keptBy(local)) {
        return;
    }
    const std::vector<std::uint32_t> repaired = precedence.repaired(local);
    for (std::size_t k = 0; k < repaired.size(); ++k) {
        m_order[from + k] = stretch[repaired[k]];
    }
}

double CTravelOrdering::plannedTravel() const {
    std::vector<SJumpEntry> placed;
    placed.reserve(m_order.size());
    for (std::uint32_t entry : m_order) {
        SJumpEntry oriented = m_entries[entry];
        const SPlan& plan = m_plans[entry];
        if (plan.rotation != 0) {
            const auto* path = static_cast<const CSubPath*>(oriented.collection);
            oriented.start = path->getLines()[plan.rotation].getPosition();
            oriented.end = oriented.start;
        }
        if (plan.reversed) {
            std::swap(oriented.start, oriented.end);
        }
        placed.push_back(oriented);
    }
    return travelOf(placed);
}

void CTravelOrdering::notePens() {
    CPenChangeCount writer;
    m_penInForce.reserve(m_entries.size());
    m_pens.reserve(m_entries.size());
    for (const SJumpEntry& entry : m_entries) {
        const unsigned short before = writer.pen();
        writer.add(entry.collection);
        // A dot, and the move-to of a path, without a pen of its own takes the one in force.
        unsigned short first = writer.pen();
        if (const auto* path = collectionCast<CSubPath>(entry.collection)) {
            first =
                path->isEmpty()
                    ? before
                    : CPenChangeCount::drawingPen(path->getLines().front().getPenNumber(), before);
        }
        m_penInForce.push_back(before);
        m_pens.push_back({first, writer.pen()});
    }
}

unsigned int CTravelOrdering::plannedPenChanges() const {
    CPenChangeCount count;
    for (std::uint32_t entry : m_order) {
        CCollection* collection = m_entries[entry].collection;
        if (const auto* path = collectionCast<CSubPath>(collection)) {
            const SPlan& plan = m_plans[entry];
            count.add(COrientedPath(*path, plan.rotation, plan.reversed, m_penInForce[entry]));
        } else if (const auto* dots = collectionCast<CDotCollection>(collection)) {
            for (const CDot& dot : *dots) {
                count.addPen(CPenChangeCount::drawingPen(dot.getPenNumber(), m_penInForce[entry]));
            }
        }
    }
    return count.changes();
}

void CTravelOrdering::apply(CTravelOptimizationResults& results) {
    unsigned int reversed = 0, rotated = 0;
    for (std::uint32_t entry : m_order) {
        CCollection* collection = m_entries[entry].collection;
        const unsigned short penInForce = m_penInForce[entry];
        if (auto* dots = collectionCast<CDotCollection>(collection)) {
            // A dot without a pen keeps drawing with the pen that was in force where it was.
            for (CDot& dot : *dots) {
                dot.setPenNumber(CPenChangeCount::drawingPen(dot.getPenNumber(), penInForce));
            }
        }
        auto* path = collectionCast<CSubPath>(collection);
        if (path == nullptr) {
            continue;
        }
        const SPlan& plan = m_plans[entry];
        COrientedPath(*path, plan.rotation, plan.reversed, penInForce).applyTo(*path);
        rotated += plan.rotation != 0 ? 1 : 0;
        reversed += plan.reversed ? 1 : 0;
    }
    results.setReversedPaths(reversed);
    results.setRotatedPaths(rotated);
}

} // namespace LibStrokeset
