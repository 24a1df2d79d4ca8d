#include "optimize/travel/CTourRefinement.h"

#include "optimize/common/CProgressReporter.h"

#include <algorithm>

namespace LibStrokeset {

namespace {
/// Items handled between two looks at the clock and the flag.
constexpr std::size_t checkEvery = 256;
constexpr std::size_t longestRun = 3;
/// Items a move may shift at most. Good moves on a nearest-neighbour order are often long
/// ones, but on a million items a move shifting half of them costs more than the many short
/// moves that the time would buy: the limit matters only for the largest drawings.
constexpr std::size_t longestShift = 100000;
} // namespace

CTourRefinement::CTourRefinement(CTravelTour& tour, const CEndNeighbours& neighbours,
                                 const std::atomic<bool>& aborted, long long deadline,
                                 std::function<void()> poll, const CTravelPrecedence* precedence)
    : m_tour(tour), m_neighbours(neighbours), m_aborted(aborted), m_deadline(deadline),
      m_poll(std::move(poll)), m_precedence(precedence) {}

bool CTourRefinement::isExit(std::uint32_t item, unsigned side) const {
    return m_tour.start(item) == m_tour.end(item) || (side == 1) != m_tour.isReversed(item);
}

bool CTourRefinement::isEntry(std::uint32_t item, unsigned side) const {
    return m_tour.start(item) == m_tour.end(item) || (side == 0) != m_tour.isReversed(item);
}

const Eigen::RowVector3f& CTourRefinement::point(std::uint32_t endPoint) const {
    return endPoint % 2 == 0 ? m_tour.start(endPoint / 2) : m_tour.end(endPoint / 2);
}

unsigned long long CTourRefinement::run() {
    m_timedOut = false;
    const std::vector<CTravelTour::SStep> path = m_tour.path();
    m_queued.assign(m_tour.size(), false);
    for (const CTravelTour::SStep& step : path) {
        m_queue.push_back(step.item);
        m_queued[step.item] = true;
    }
    unsigned long long moves = 0;
    std::size_t handled = 0;
    while (!m_queue.empty()) {
        if (++handled % checkEvery == 0) {
            if (m_poll) {
                m_poll();
            }
            if (m_aborted.load()) {
                break;
            }
            if (monotonicNanoseconds() > m_deadline) {
                m_timedOut = true;
                break;
            }
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

bool CTourRefinement::improve(std::uint32_t item) {
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
        }
    }
    return false;
}

bool CTourRefinement::shortens(double removed, double added) {
    return added < removed && removed - added > removed * 1e-12;
}

bool CTourRefinement::tryTwoOpt(std::size_t a, std::size_t b) {
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
    if (!shortens(removed, added) ||
        (m_precedence != nullptr && !m_precedence->allowsReversal(m_tour, a + 1, b))) {
        return false;
    }
    const std::size_t touched[] = {a, a + 1, b, b + 1};
    std::uint32_t items[4];
    for (int k = 0; k < 4; ++k) {
        items[k] = m_tour.itemAt(touched[k]);
    }
    m_tour.reverse(a + 1, b);
    for (std::uint32_t item : items) {
        requeue({m_tour.positionOf(item)});
    }
    return true;
}

bool CTourRefinement::tryOrOpt(std::size_t first, std::size_t count, std::size_t near) {
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
        if (m_precedence != nullptr && !m_precedence->keptAround(m_tour, run, count)) {
            // Put the run back where it was: after the item that came before it. The cycle may
            // now start elsewhere, so the positions above no longer hold.
            const std::uint32_t lead = reversed ? run[count - 1] : run[0];
            m_tour.move(m_tour.positionOf(lead), count, m_tour.positionOf(items[0]), reversed);
            return false;
        }
        for (std::uint32_t item : items) {
            requeue({m_tour.positionOf(item)});
        }
        return true;
    }
    return false;
}

void CTourRefinement::requeue(std::initializer_list<std::size_t> positions) {
    for (std::size_t position : positions) {
        const std::uint32_t item = m_tour.itemAt(position);
        if (item != m_tour.gap() && !m_queued[item]) {
            m_queue.push_back(item);
            m_queued[item] = true;
        }
    }
}

} // namespace LibStrokeset
