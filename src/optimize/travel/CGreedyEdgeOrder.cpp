#include "optimize/travel/CGreedyEdgeOrder.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <tuple>

#include "optimize/EOptimizerEngine.h"
#include "optimize/rules/CGreedyPlacement.h"
#include "optimize/rules/SJumpEntry.h"
#include "optimize/travel/CEndNeighbours.h"

namespace LibStrokeset {

namespace {
/// Candidate jumps per end: the matching takes short jumps, which lie among the nearest few.
constexpr std::size_t candidatesPerEnd = 4;

struct SCandidate {
    float length;
    std::uint32_t from, to; // from < to
    bool operator<(const SCandidate& other) const {
        return std::tie(length, from, to) < std::tie(other.length, other.from, other.to);
    }
    bool operator==(const SCandidate& other) const { return from == other.from && to == other.to; }
};
} // namespace

CGreedyEdgeOrder::CGreedyEdgeOrder(const std::vector<Eigen::RowVector3f>& starts,
                                   const std::vector<Eigen::RowVector3f>& ends,
                                   const std::atomic<bool>& aborted)
    : m_starts(starts), m_ends(ends), m_aborted(aborted), m_linked(2 * starts.size(), none),
      m_parent(starts.size()) {
    std::iota(m_parent.begin(), m_parent.end(), 0u);
    match();
}

std::uint32_t CGreedyEdgeOrder::root(std::uint32_t item) {
    while (m_parent[item] != item) {
        m_parent[item] = m_parent[m_parent[item]];
        item = m_parent[item];
    }
    return item;
}

void CGreedyEdgeOrder::match() {
    const CEndNeighbours neighbours(m_starts, m_ends, candidatesPerEnd);
    const auto pointOf = [this](std::uint32_t end) {
        return end % 2 == 0 ? &m_starts[end / 2] : &m_ends[end / 2];
    };
    std::vector<SCandidate> candidates;
    candidates.reserve(2 * m_starts.size() * candidatesPerEnd);
    for (std::uint32_t end = 0; end < m_linked.size(); ++end) {
        const std::uint32_t* list = neighbours.of(end);
        for (std::size_t k = 0; k < candidatesPerEnd && list[k] != CEndNeighbours::none; ++k) {
            const auto length =
                static_cast<float>(CTravelTour::jump(pointOf(end), pointOf(list[k])));
            candidates.push_back({length, std::min(end, list[k]), std::max(end, list[k])});
        }
    }
    if (m_aborted.load()) {
        return;
    }
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    // A point where an item starts and ends is filed once but may take two jumps.
    const auto freeSide = [this](std::uint32_t end) {
        if (m_linked[end] == none) {
            return end;
        }
        const std::uint32_t item = end / 2;
        return end % 2 == 0 && m_starts[item] == m_ends[item] && m_linked[end + 1] == none ? end + 1
                                                                                           : none;
    };
    for (const SCandidate& candidate : candidates) {
        const std::uint32_t from = freeSide(candidate.from), to = freeSide(candidate.to);
        if (from == none || to == none) {
            continue;
        }
        const std::uint32_t fromRoot = root(from / 2), toRoot = root(to / 2);
        if (fromRoot == toRoot) { // it would close a loop
            continue;
        }
        m_parent[fromRoot] = toRoot;
        m_linked[from] = to;
        m_linked[to] = from;
    }
    m_complete = !m_aborted.load();
}

std::vector<std::vector<CTravelTour::SStep>> CGreedyEdgeOrder::chains() const {
    const std::size_t n = m_starts.size();
    std::vector<std::vector<CTravelTour::SStep>> chains;
    std::vector<bool> placed(n, false);
    for (std::uint32_t item = 0; item < n; ++item) {
        if (placed[item] || (m_linked[2 * item] != none && m_linked[2 * item + 1] != none)) {
            continue; // placed, or inside a chain, which is walked from one of its ends
        }
        // Entered by its free side: at its start (as it runs) or at its end (reversed).
        std::uint32_t entered = m_linked[2 * item] == none ? 2 * item : 2 * item + 1;
        chains.emplace_back();
        for (;;) {
            placed[entered / 2] = true;
            chains.back().push_back({entered / 2, entered % 2 == 1});
            const std::uint32_t next = m_linked[entered ^ 1u];
            if (next == none) {
                break;
            }
            entered = next;
        }
    }
    return chains;
}

std::vector<CTravelTour::SStep> CGreedyEdgeOrder::order(const Eigen::RowVector3f* origin) const {
    if (!m_complete || m_starts.empty()) {
        return {};
    }
    std::vector<std::vector<CTravelTour::SStep>> found = chains();
    const auto turn = [](std::vector<CTravelTour::SStep>& chain) {
        std::reverse(chain.begin(), chain.end());
        for (CTravelTour::SStep& step : chain) {
            step.reversed = !step.reversed;
        }
    };
    const auto entryOf = [this](const CTravelTour::SStep& step) {
        return step.reversed ? m_ends[step.item] : m_starts[step.item];
    };
    const auto exitOf = [this](const CTravelTour::SStep& step) {
        return step.reversed ? m_starts[step.item] : m_ends[step.item];
    };
    if (origin != nullptr && !found.empty()) {
        // The chain end nearest the origin comes first; NaN jumps never win.
        std::size_t first = 0;
        bool turned = false;
        double best = std::numeric_limits<double>::infinity();
        for (std::size_t c = 0; c < found.size(); ++c) {
            const Eigen::RowVector3f in = entryOf(found[c].front()), out = exitOf(found[c].back());
            for (const auto& [point, reversed] : {std::pair(in, false), std::pair(out, true)}) {
                const double jump = CTravelTour::jump(origin, &point);
                if (jump < best) {
                    best = jump;
                    first = c;
                    turned = reversed;
                }
            }
        }
        std::swap(found[0], found[first]);
        if (turned) {
            turn(found[0]);
        }
    }
    std::vector<SJumpEntry> entries;
    entries.reserve(found.size());
    for (const auto& chain : found) {
        entries.push_back({nullptr, true, entryOf(chain.front()), exitOf(chain.back())});
    }
    const SPlacement placement = CGreedyPlacement(m_aborted, [](unsigned long long) {
                                 }).place(entries, EOptimizerEngine::eIndexed);
    if (!placement.complete) {
        return {};
    }
    std::vector<CTravelTour::SStep> steps;
    steps.reserve(m_starts.size());
    for (std::size_t k = 0; k < placement.order.size(); ++k) {
        std::vector<CTravelTour::SStep>& chain = found[placement.order[k]];
        if (placement.reversed[k]) {
            turn(chain);
        }
        steps.insert(steps.end(), chain.begin(), chain.end());
    }
    // Every item lies on one chain, as no jump closes a loop.
    return steps.size() == m_starts.size() ? steps : std::vector<CTravelTour::SStep>();
}

} // namespace LibStrokeset
