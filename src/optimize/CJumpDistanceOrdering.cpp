#include "optimize/CJumpDistanceOrdering.h"

#include <utility>

#include <LibStrokeset/CSubPath.h>

#include "elements/Geometry.h"
#include "optimize/rules/CGreedyPlacement.h"
#include "optimize/common/CWorkingSequence.h"
#include "optimize/common/CollectionCast.h"
#include "optimize/common/PollInterval.h"
#include "optimize/rules/SJumpEntry.h"

namespace LibStrokeset {

namespace {

/// Describes the entries in sequence order, handing each to `keep`, and sums the travel
/// before on the way (in float, in that order); false when the flag stopped it.
template <class Keep>
bool describeAll(CWorkingSequence& sequence, const std::atomic<bool>& aborted, float& before,
                 Keep keep) {
    bool previousHasEnds = false;
    Eigen::RowVector3f previousEnd = Eigen::RowVector3f::Zero();
    for (std::size_t i = 0; i < sequence.entries().size(); ++i) {
        if (i % pollEvery == 0 && aborted.load()) {
            return false;
        }
        CCollection* collection = sequence.entries()[i];
        const SJumpEntry entry = sequence.isSplitDot(i) ? SJumpEntry::describeSingleDot(collection)
                                                        : SJumpEntry::describe(collection);
        if (previousHasEnds && entry.hasEnds) {
            before += distance(previousEnd, entry.start);
        }
        previousHasEnds = entry.hasEnds;
        previousEnd = entry.end;
        keep(entry);
    }
    return true;
}

/// The collections in placement order, those placed reversed turned round.
std::vector<CCollection*> orderOf(CWorkingSequence& sequence, const SPlacement& placement) {
    std::vector<CCollection*> order;
    order.reserve(placement.order.size());
    for (std::size_t i = 0; i < placement.order.size(); ++i) {
        CCollection* collection = sequence.entries()[placement.order[i]];
        order.push_back(collection);
        // Only a sub-path can have its end strictly nearer than its start.
        if (placement.reversed[i]) {
            if (auto* subPath = collectionCast<CSubPath>(collection)) {
                subPath->reverse();
            }
        }
    }
    return order;
}

} // namespace

CJumpDistanceOrdering::CJumpDistanceOrdering(std::list<CCollection*>& collections,
                                             const std::atomic<bool>& aborted,
                                             CProgressReporter& reporter, EOptimizerEngine engine)
    : m_collections(collections), m_aborted(aborted), m_reporter(reporter), m_engine(engine) {}

bool CJumpDistanceOrdering::aborted() const { return m_aborted.load(); }

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

    // The reference scan reads every entry throughout; the tree files them as they are
    // described, so that a million entries are never held twice.
    const bool scanned = m_engine == EOptimizerEngine::eReference;
    std::vector<SJumpEntry> entries;
    entries.reserve(scanned ? n : 0);
    CJumpTree::CFiler filer(scanned ? 0 : n);
    float before = 0.0f;
    const bool described = describeAll(sequence, m_aborted, before, [&](const SJumpEntry& entry) {
        if (scanned) {
            entries.push_back(entry);
        } else {
            filer.add(entry);
        }
    });
    if (!described) {
        return;
    }
    counters.jumpDistanceBefore = before;

    // Greedy nearest neighbour from the first collection.
    const auto report = [this, estimate](unsigned long long steps) {
        m_reporter.report(4, steps, static_cast<float>(estimate));
    };
    CGreedyPlacement greedy(m_aborted, report);
    const SPlacement placement =
        scanned ? greedy.place(entries, m_engine) : greedy.place(std::move(filer));
    counters.performedRuns += placement.steps;
    counters.jumpDistanceAfter = placement.total;

    const float after = placement.total;
    if (placement.complete && before > zeroDistance && after > zeroDistance && before > after) {
        sequence.adopt(m_collections, orderOf(sequence, placement));
        counters.reordered = 1;
    }
}

} // namespace LibStrokeset
