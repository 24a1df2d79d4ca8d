#include "optimize/CJumpDistanceOrdering.h"

#include <cfloat>

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CSubPath.h>

#include "elements/Geometry.h"
#include "optimize/CWorkingSequence.h"

namespace LibStrokeset {

CJumpDistanceOrdering::CJumpDistanceOrdering(std::list<CCollection*>& collections,
                                             const std::atomic<bool>& aborted,
                                             CProgressReporter& reporter)
    : m_collections(collections), m_aborted(aborted), m_reporter(reporter) {}

bool CJumpDistanceOrdering::aborted() const { return m_aborted.load(); }

CJumpDistanceOrdering::SEntry CJumpDistanceOrdering::describe(CCollection* collection) {
    // Unsupported records and sub-paths without lines have no jump end points.
    if (auto* subPath = dynamic_cast<CSubPath*>(collection)) {
        if (!subPath->isEmpty()) {
            return {collection, true, subPath->getFirstPosition(), subPath->getLastPosition()};
        }
    } else if (auto* dots = dynamic_cast<CDotCollection*>(collection)) {
        if (!dots->isEmpty()) {
            return {collection, true, dots->getFirstPosition(), dots->getLastPosition()};
        }
    }
    return {collection, false, Eigen::RowVector3f::Zero(), Eigen::RowVector3f::Zero()};
}

float CJumpDistanceOrdering::sumOfJumps(const std::vector<SEntry>& entries) const {
    float total = 0.0f;
    for (std::size_t i = 0; i + 1 < entries.size(); ++i) {
        if (entries[i].hasEnds && entries[i + 1].hasEnds) {
            total += distance(entries[i].end, entries[i + 1].start);
        }
        if (aborted()) {
            break;
        }
    }
    return total;
}

void CJumpDistanceOrdering::run(SRunCounters& counters) {
    m_reporter.call(4, 0.0f);
    ++counters.passes;

    CWorkingSequence sequence;
    sequence.build(m_collections, [this] { return aborted(); });
    const std::size_t n = sequence.entries().size();
    if (n <= 2 || aborted()) {
        return;
    }
    const unsigned long long estimate = static_cast<unsigned long long>(n - 1) * n / 2;
    counters.estimatedRuns += estimate;

    std::vector<SEntry> remaining;
    remaining.reserve(n);
    for (CCollection* collection : sequence.entries()) {
        remaining.push_back(describe(collection));
    }
    counters.jumpDistanceBefore = sumOfJumps(remaining);

    // Greedy nearest neighbour from the first collection. Only a strictly shorter jump
    // replaces the best, so ties go to the earliest entry, and an entry is reversed only
    // when its end is strictly nearer than its start.
    std::vector<CCollection*> order;
    std::vector<CSubPath*> toReverse;
    order.reserve(n);
    std::size_t next = 0;
    bool nextReversed = false;
    unsigned long long steps = 0;
    float after = 0.0f;
    while (!aborted()) {
        const SEntry placed = remaining[next];
        remaining.erase(remaining.begin() + static_cast<std::ptrdiff_t>(next));
        order.push_back(placed.collection);
        if (nextReversed) {
            // Only a sub-path can have its end strictly nearer than its start.
            toReverse.push_back(dynamic_cast<CSubPath*>(placed.collection));
        }
        const Eigen::RowVector3f from = nextReversed ? placed.start : placed.end;
        float best = FLT_MAX;
        std::size_t bestIndex = remaining.size();
        for (std::size_t j = 0; j < remaining.size(); ++j) {
            ++steps;
            const SEntry& candidate = remaining[j];
            if (placed.hasEnds && candidate.hasEnds) {
                const float forward = distance(from, candidate.start);
                const float backward = distance(from, candidate.end);
                if (forward > backward) {
                    if (best > backward) {
                        best = backward;
                        bestIndex = j;
                        nextReversed = true;
                    }
                } else if (best > forward) {
                    best = forward;
                    bestIndex = j;
                    nextReversed = false;
                }
            }
            if (aborted()) {
                break;
            }
        }
        if (bestIndex < remaining.size()) {
            next = bestIndex;
        } else {
            next = 0;
            nextReversed = false;
        }
        if (best > zeroDistance && best < FLT_MAX) {
            after += best;
        }
        m_reporter.report(4, steps, static_cast<float>(estimate));
        if (aborted() || remaining.empty()) {
            break;
        }
    }
    counters.performedRuns += steps;
    counters.jumpDistanceAfter = after;

    const float before = counters.jumpDistanceBefore;
    const bool placedAll = remaining.empty() && !aborted();
    if (placedAll && before > zeroDistance && after > zeroDistance && before > after) {
        for (CSubPath* subPath : toReverse) {
            if (subPath != nullptr) {
                subPath->reverse();
            }
        }
        sequence.adopt(m_collections, order);
        counters.reordered = 1;
    }
}

} // namespace LibStrokeset
