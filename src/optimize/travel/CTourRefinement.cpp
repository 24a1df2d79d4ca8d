#include "optimize/travel/CTourRefinement.h"

#include "optimize/common/CProgressReporter.h"

#include <algorithm>
#include <type_traits>
#include <random>

namespace LibStrokeset {

namespace {
/// Items handled between two looks at the clock and the flag.
constexpr std::size_t checkEvery = 256;
constexpr std::size_t longestRun = 3;
/// Items a move may shift at most. Good moves on a nearest-neighbour order are often long
/// ones, but on a million items a move shifting half of them costs more than the many short
/// moves that the time would buy: the limit matters only for the largest drawings.
constexpr std::size_t longestShift = 100000;
/// Kicks tried per item once no move is left, and the longest stretch a kick swaps. A kick
/// costs far more than a look at the clock, so the clock is read before every one: a short
/// time limit holds even on a small drawing.
constexpr std::size_t kicksPerItem = 2;
constexpr std::size_t longestKick = 30;
} // namespace

template <class Tour>
CTourRefinement<Tour>::CTourRefinement(Tour& tour, const CEndNeighbours& neighbours,
                                       const std::atomic<bool>& aborted, long long deadline,
                                       std::function<void()> poll,
                                       const CTravelPrecedence* precedence)
    : m_tour(tour), m_neighbours(neighbours), m_aborted(aborted), m_deadline(deadline),
      m_poll(std::move(poll)), m_precedence(precedence) {}

template <class Tour> bool CTourRefinement<Tour>::isExit(std::uint32_t item, unsigned side) const {
    return m_tour.start(item) == m_tour.end(item) || (side == 1) != m_tour.isReversed(item);
}

template <class Tour> bool CTourRefinement<Tour>::isEntry(std::uint32_t item, unsigned side) const {
    return m_tour.start(item) == m_tour.end(item) || (side == 0) != m_tour.isReversed(item);
}

template <class Tour>
const Eigen::RowVector3f& CTourRefinement<Tour>::point(std::uint32_t endPoint) const {
    return endPoint % 2 == 0 ? m_tour.start(endPoint / 2) : m_tour.end(endPoint / 2);
}

template <class Tour> unsigned long long CTourRefinement<Tour>::run() {
    m_timedOut = false;
    m_stopped = false;
    const std::vector<CTravelTour::SStep> path = m_tour.path();
    m_queued.assign(m_tour.size(), false);
    for (const CTravelTour::SStep& step : path) {
        m_queue.push_back(step.item);
        m_queued[step.item] = true;
    }
    unsigned long long moves = drain();
    if (!m_stopped && m_precedence == nullptr) {
        moves += perturb();
    }
    return moves;
}

template <class Tour> bool CTourRefinement<Tour>::mustStop() {
    if (m_poll) {
        m_poll();
    }
    if (m_aborted.load()) {
        m_stopped = true;
    } else if (monotonicNanoseconds() > m_deadline) {
        m_stopped = m_timedOut = true;
    }
    return m_stopped;
}

template <class Tour> unsigned long long CTourRefinement<Tour>::drain() {
    unsigned long long moves = 0;
    while (!m_queue.empty()) {
        if (++m_handled % checkEvery == 0 && mustStop()) {
            break;
        }
        const std::uint32_t item = m_queue.front();
        m_queue.pop_front();
        m_queued[item] = false;
        if (improve(item)) {
            ++moves;
            if (!m_queued[item]) {
                m_queue.push_back(item);
                m_queued[item] = true;
            }
        }
    }
    return moves;
}

template <class Tour> unsigned long long CTourRefinement<Tour>::perturb() {
    const std::size_t n = m_tour.size();
    if (n < 8) {
        return 0;
    }
    // A fixed seed: a run that meets no deadline is the same every time.
    std::mt19937 random(static_cast<std::uint32_t>(n));
    const std::size_t longest = std::min(longestKick, (n - 2) / 2);
    unsigned long long moves = 0;
    const std::size_t kicks = std::min(kicksPerItem * n, m_kickLimit);
    for (std::size_t kick = 0; kick < kicks; ++kick) {
        if (mustStop()) {
            break;
        }
        // A double bridge: B and C after a change places, then the moves repair around it.
        const std::size_t a = random() % n;
        const std::size_t b = a + random() % longest + 1;
        const std::size_t c = b + random() % longest + 1;
        const double removed = m_tour.jumpAfter(a) + m_tour.jumpAfter(b) + m_tour.jumpAfter(c);
        const double added =
            CTravelTour::jump(m_tour.exit(m_tour.itemAt(a)), m_tour.entry(m_tour.itemAt(b + 1))) +
            CTravelTour::jump(m_tour.exit(m_tour.itemAt(c)), m_tour.entry(m_tour.itemAt(a + 1))) +
            CTravelTour::jump(m_tour.exit(m_tour.itemAt(b)), m_tour.entry(m_tour.itemAt(c + 1)));
        const std::uint32_t items[] = {m_tour.itemAt(a), m_tour.itemAt(a + 1),
                                       m_tour.itemAt(b), m_tour.itemAt(b + 1),
                                       m_tour.itemAt(c), m_tour.itemAt(c + 1)};
        m_tour.startJournal();
        m_gain = 0.0;
        swapStretches(a + 1, b - a, c - b, false, false);
        for (std::uint32_t item : items) {
            requeue({m_tour.positionOf(item)});
        }
        const unsigned long long found = drain();
        if (!m_stopped && shortens(removed + m_gain, added)) {
            m_tour.keepChanges();
            moves += found + 1;
            ++m_counts.kicks;
        } else {
            m_tour.rollBack();
            for (std::uint32_t item : m_queue) {
                m_queued[item] = false;
            }
            m_queue.clear();
        }
    }
    return moves;
}

template <class Tour> bool CTourRefinement<Tour>::improve(std::uint32_t item) {
    const std::size_t at = m_tour.positionOf(item);
    for (unsigned side = 0; side < 2; ++side) {
        const std::uint32_t own = 2 * item + side;
        const Eigen::RowVector3f& p = point(own);
        const bool exit = isExit(item, side);
        const bool entry = isEntry(item, side);
        // A new jump from p helps only when it is shorter than a jump at p now.
        const double bound = std::max(exit ? m_tour.jumpAfter(at) : 0.0,
                                      entry ? m_tour.jumpAfter(at + m_tour.size() - 1) : 0.0);
        const std::uint32_t* list = m_neighbours.of(own);
        for (std::size_t k = 0; k < m_neighbours.perEnd(); ++k) {
            const std::uint32_t other = list[k];
            if (other == CEndNeighbours::none || !(CTravelTour::jump(&p, &point(other)) < bound)) {
                break;
            }
            const std::uint32_t near = other / 2;
            const unsigned nearSide = other % 2;
            const std::size_t nearAt = m_tour.positionOf(near);
            const std::size_t n = m_tour.size();
            if ((exit && isExit(near, nearSide) && tryTwoOpt(at, nearAt)) ||
                (entry && isEntry(near, nearSide) && tryTwoOpt(at + n - 1, nearAt + n - 1))) {
                return true;
            }
            for (std::size_t count = 1; count <= longestRun; ++count) {
                if (tryOrOpt(at, count, nearAt) || tryOrOpt(at + n + 1 - count, count, nearAt)) {
                    return true;
                }
            }
            // The near end met along the tour from an exit, or against it from an entry: as
            // the end the pen would enter by, or, the stretch turned, leave by.
            for (const bool forward : {true, false}) {
                const bool enters = forward ? isEntry(near, nearSide) : isExit(near, nearSide);
                const bool leaves = forward ? isExit(near, nearSide) : isEntry(near, nearSide);
                if (m_precedence == nullptr && (forward ? exit : entry) &&
                    ((enters && tryInsertion(at, nearAt, forward, false)) ||
                     (leaves && tryInsertion(at, nearAt, forward, true)))) {
                    return true;
                }
            }
        }
    }
    return false;
}

template <class Tour> bool CTourRefinement<Tour>::shortens(double removed, double added) {
    return added < removed && removed - added > removed * 1e-12;
}

template <class Tour> bool CTourRefinement<Tour>::tryTwoOpt(std::size_t a, std::size_t b) {
    const std::size_t n = m_tour.size();
    a %= n;
    b %= n;
    const std::size_t run = (b + n - a) % n;
    if (a == b || std::min(run, n - run) > longestShift) {
        return false;
    }
    const double removed = m_tour.jumpAfter(a) + m_tour.jumpAfter(b);
    const double added =
        CTravelTour::jump(m_tour.exit(m_tour.itemAt(a)), m_tour.exit(m_tour.itemAt(b))) +
        CTravelTour::jump(m_tour.entry(m_tour.itemAt(a + 1)), m_tour.entry(m_tour.itemAt(b + 1)));
    if (!shortens(removed, added) || (m_precedence != nullptr && !allowsReversal(a + 1, b))) {
        return false;
    }
    const std::size_t touched[] = {a, a + 1, b, b + 1};
    std::uint32_t items[4];
    for (int k = 0; k < 4; ++k) {
        items[k] = m_tour.itemAt(touched[k]);
    }
    m_tour.reverse(a + 1, b);
    m_gain += removed - added;
    for (std::uint32_t item : items) {
        requeue({m_tour.positionOf(item)});
    }
    ++m_counts.twoOpt;
    return true;
}

template <class Tour>
bool CTourRefinement<Tour>::tryOrOpt(std::size_t first, std::size_t count, std::size_t near) {
    const std::size_t n = m_tour.size();
    if (n < count + 3) {
        return false;
    }
    first %= n;
    const std::size_t last = (first + count - 1) % n;
    for (std::size_t k = 0; k < count; ++k) {
        if (m_tour.itemAt(first + k) == m_tour.gap()) {
            return false;
        }
    }
    const auto exitAt = [this](std::size_t p) { return m_tour.exit(m_tour.itemAt(p)); };
    const auto entryAt = [this](std::size_t p) { return m_tour.entry(m_tour.itemAt(p)); };
    const double cut = m_tour.jumpAfter(first + n - 1) + m_tour.jumpAfter(last);
    const double bridge = CTravelTour::jump(exitAt(first + n - 1), entryAt(last + 1));
    for (std::size_t after : {near % n, (near + n - 1) % n}) {
        // The jump after `after` must lie outside the run and its two jumps.
        const std::size_t between = (after + n - last) % n;
        if ((after + n - first + 1) % n <= count ||
            std::min(between, n - count - between) > longestShift) {
            continue;
        }
        const double opened = m_tour.jumpAfter(after);
        const double forward = CTravelTour::jump(exitAt(after), entryAt(first)) +
                               CTravelTour::jump(exitAt(last), entryAt(after + 1));
        const double backward = CTravelTour::jump(exitAt(after), exitAt(last)) +
                                CTravelTour::jump(entryAt(first), entryAt(after + 1));
        const bool reversed = backward < forward;
        const double added = reversed ? backward : forward;
        if (!shortens(cut + opened, bridge + added)) {
            continue;
        }
        const std::uint32_t items[] = {m_tour.itemAt(first + n - 1), m_tour.itemAt(last + 1),
                                       m_tour.itemAt(after),         m_tour.itemAt(after + 1),
                                       m_tour.itemAt(first),         m_tour.itemAt(last)};
        const std::uint32_t run[] = {m_tour.itemAt(first), m_tour.itemAt(first + 1),
                                     m_tour.itemAt(first + 2)};
        m_tour.move(first, count, after, reversed);
        if (m_precedence != nullptr && !keptAround(run, count)) {
            // Put the run back where it was: after the item that came before it. The cycle may
            // now start elsewhere, so the positions above no longer hold.
            const std::uint32_t lead = reversed ? run[count - 1] : run[0];
            m_tour.move(m_tour.positionOf(lead), count, m_tour.positionOf(items[0]), reversed);
            return false;
        }
        m_gain += cut + opened - bridge - added;
        for (std::uint32_t item : items) {
            requeue({m_tour.positionOf(item)});
        }
        ++m_counts.orOpt;
        return true;
    }
    return false;
}

template <class Tour>
std::size_t CTourRefinement<Tour>::step(std::size_t position, bool forward, std::size_t by) const {
    const std::size_t n = m_tour.size();
    if (by >= n) {
        by %= n;
    }
    const std::size_t to = forward ? position + by : position + n - by; // below 2 n
    return to < n ? to : to - n;
}

template <class Tour>
const Eigen::RowVector3f* CTourRefinement<Tour>::leaving(std::size_t position, bool forward) const {
    const std::uint32_t item = m_tour.itemAt(position);
    return forward ? m_tour.exit(item) : m_tour.entry(item);
}

template <class Tour>
const Eigen::RowVector3f* CTourRefinement<Tour>::entering(std::size_t position,
                                                          bool forward) const {
    const std::uint32_t item = m_tour.itemAt(position);
    return forward ? m_tour.entry(item) : m_tour.exit(item);
}

template <class Tour>
double CTourRefinement<Tour>::jumpOnwards(std::size_t position, bool forward) const {
    return m_tour.jumpAfter(forward ? position : position + m_tour.size() - 1);
}

template <class Tour>
std::uint32_t CTourRefinement<Tour>::endPointAt(std::size_t position, bool leavingSide,
                                                bool forward) const {
    const std::uint32_t item = m_tour.itemAt(position);
    if (item == m_tour.gap()) {
        return CEndNeighbours::none;
    }
    if (m_tour.start(item) == m_tour.end(item)) {
        return 2 * item; // only the start is filed
    }
    const Eigen::RowVector3f* p =
        leavingSide ? leaving(position, forward) : entering(position, forward);
    return 2 * item + (p == &m_tour.end(item) ? 1 : 0);
}

template <class Tour>
bool CTourRefinement<Tour>::tryInsertion(std::size_t a, std::size_t near, bool forward,
                                         bool turned) {
    const std::size_t n = m_tour.size();
    const auto offset = [&](std::size_t p) { return forward ? (p + n - a) % n : (a + n - p) % n; };
    // Along the view: a, then B up to before c, then C from c to d, then the rest up to a.
    // Unturned, near is c and C is entered at c; turned, near is d and C is entered at d.
    const std::size_t nearOffset = offset(near);
    if (nearOffset < 2 || n < 4) {
        return false;
    }
    const double opened = jumpOnwards(a, forward);
    const double first = CTravelTour::jump(leaving(a, forward), turned ? leaving(near, forward)
                                                                       : entering(near, forward));
    if (!(first < opened)) {
        return false;
    }
    const std::size_t next = step(a, forward);
    // The other end comes from the list of an end that the move opens: the first item of B,
    // or the end the second removed jump leaves free.
    const std::size_t freed = turned ? step(near, forward) : step(near, forward, n - 1);
    const std::uint32_t sources[] = {endPointAt(next, false, forward),
                                     endPointAt(freed, !turned, forward)};
    const Eigen::RowVector3f* sourcePoints[] = {
        entering(next, forward), turned ? entering(freed, forward) : leaving(freed, forward)};
    // What the first new jump saves and the second removed one frees: a jump from the freed
    // end must stay under it (lists are nearest first), one from B's first item under it and
    // the jump it removes.
    const double budget = opened - first + jumpOnwards(turned ? near : freed, forward);
    for (unsigned source = 0; source < 2; ++source) {
        if (sources[source] == CEndNeighbours::none) {
            continue;
        }
        const std::uint32_t* list = m_neighbours.of(sources[source]);
        for (std::size_t k = 0; k < m_neighbours.perEnd(); ++k) {
            const std::uint32_t other = list[k];
            if (other == CEndNeighbours::none) {
                break;
            }
            const double reach = CTravelTour::jump(sourcePoints[source], &point(other));
            if (source == 1 && !(reach < budget)) {
                break;
            }
            const std::uint32_t item = other / 2;
            const unsigned side = other % 2;
            const bool leaves = forward ? isExit(item, side) : isEntry(item, side);
            const bool enters = forward ? isEntry(item, side) : isExit(item, side);
            const std::size_t at = m_tour.positionOf(item);
            const std::size_t before = step(at, forward, n - 1), after = step(at, forward);
            if (source == 0 &&
                !(reach < budget + std::max(leaves ? jumpOnwards(at, forward) : 0.0,
                                            enters ? jumpOnwards(before, forward) : 0.0))) {
                continue;
            }
            // Which stretch the neighbour's end bounds decides which may be turned around.
            std::size_t c = near, d = near;
            ETurn turn = ETurn::eNone;
            if (!turned) {
                if (source == 0) { // it meets B's first item: C's last, or, B turned, after C
                    d = leaves ? at : before;
                    turn = leaves ? ETurn::eNone : ETurn::eBetween;
                } else { // it meets B's last item: after C, or, B turned, C's last
                    d = enters ? before : at;
                    turn = enters ? ETurn::eNone : ETurn::eBetween;
                }
            } else if (source == 0 && enters) {
                c = at; // C, turned, is left at c into B
                turn = ETurn::eMoved;
            } else if (source == 1 && leaves) {
                c = after; // B's end now jumps to the item after C
                turn = ETurn::eMoved;
            } else {
                continue;
            }
            const std::size_t cOffset = offset(c), dOffset = offset(d);
            if (cOffset >= 2 && cOffset <= dOffset && dOffset < n &&
                tryInsertionAt(a, c, d, forward, turn)) {
                return true;
            }
            // A dot or closed path both enters and leaves: try it the other way, too.
            if (!turned && leaves && enters) {
                const std::size_t other = source == 0 ? before : at;
                const ETurn otherTurn = turn == ETurn::eNone ? ETurn::eBetween : ETurn::eNone;
                if (offset(other) >= cOffset && offset(other) < n &&
                    tryInsertionAt(a, c, other, forward, otherTurn)) {
                    return true;
                }
            }
        }
    }
    return false;
}

template <class Tour>
bool CTourRefinement<Tour>::tryInsertionAt(std::size_t a, std::size_t c, std::size_t d,
                                           bool forward, ETurn turn) {
    const std::size_t n = m_tour.size();
    const auto offset = [&](std::size_t p) { return forward ? (p + n - a) % n : (a + n - p) % n; };
    const std::size_t between = offset(c) - 1, moved = offset(d) - offset(c) + 1;
    if (std::min(between, moved) > longestShift) {
        return false;
    }
    const std::size_t next = step(a, forward), beforeC = step(c, forward, n - 1),
                      afterD = step(d, forward);
    const auto jump = [&](std::size_t from, bool fromLeaves, std::size_t to, bool toLeaves) {
        return CTravelTour::jump(fromLeaves ? leaving(from, forward) : entering(from, forward),
                                 toLeaves ? leaving(to, forward) : entering(to, forward));
    };
    const double removed =
        jumpOnwards(a, forward) + jumpOnwards(beforeC, forward) + jumpOnwards(d, forward);
    double added = 0.0;
    switch (turn) {
    case ETurn::eNone: // a C B
        added = jump(a, true, c, false) + jump(d, true, next, false) +
                jump(beforeC, true, afterD, false);
        break;
    case ETurn::eMoved: // a C' B
        added = jump(a, true, d, true) + jump(c, false, next, false) +
                jump(beforeC, true, afterD, false);
        break;
    case ETurn::eBetween: // a C B'
        added = jump(a, true, c, false) + jump(d, true, beforeC, true) +
                jump(next, false, afterD, false);
        break;
    }
    if (!shortens(removed, added)) {
        return false;
    }
    const std::uint32_t items[] = {m_tour.itemAt(a), m_tour.itemAt(next), m_tour.itemAt(beforeC),
                                   m_tour.itemAt(c), m_tour.itemAt(d),    m_tour.itemAt(afterD)};
    // In tour order the move swaps two neighbouring stretches, X then Y: B then C along the
    // tour, C then B against it.
    const bool turnMoved = turn == ETurn::eMoved, turnBetween = turn == ETurn::eBetween;
    if (forward) {
        swapStretches(next, between, moved, turnBetween, turnMoved);
    } else {
        swapStretches(d, moved, between, turnMoved, turnBetween);
    }
    m_gain += removed - added;
    for (std::uint32_t item : items) {
        requeue({m_tour.positionOf(item)});
    }
    ++m_counts.insertion;
    return true;
}

template <class Tour>
void CTourRefinement<Tour>::swapStretches(std::size_t first, std::size_t firstCount,
                                          std::size_t secondCount, bool turnFirst,
                                          bool turnSecond) {
    // X Y becomes Y X, the one marked turned around; the shorter one moves when neither is.
    if (turnSecond || (!turnFirst && secondCount < firstCount)) {
        m_tour.move(first + firstCount, secondCount, first + m_tour.size() - 1, turnSecond);
    } else {
        m_tour.move(first, firstCount, first + firstCount + secondCount - 1, turnFirst);
    }
}

template <class Tour>
void CTourRefinement<Tour>::requeue(std::initializer_list<std::size_t> positions) {
    for (std::size_t position : positions) {
        const std::uint32_t item = m_tour.itemAt(position);
        if (item != m_tour.gap() && !m_queued[item]) {
            m_queue.push_back(item);
            m_queued[item] = true;
        }
    }
}

template <class Tour>
bool CTourRefinement<Tour>::allowsReversal(std::size_t first, std::size_t last) const {
    if constexpr (std::is_same_v<Tour, CTravelTour>) {
        return m_precedence->allowsReversal(m_tour, first, last);
    } else {
        return false;
    }
}

template <class Tour>
bool CTourRefinement<Tour>::keptAround(const std::uint32_t* items, std::size_t count) const {
    if constexpr (std::is_same_v<Tour, CTravelTour>) {
        return m_precedence->keptAround(m_tour, items, count);
    } else {
        return false;
    }
}

template class CTourRefinement<CTravelTour>;
template class CTourRefinement<CBlockedTour>;

} // namespace LibStrokeset
