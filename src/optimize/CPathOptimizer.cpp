#include "optimize/CPathOptimizer.h"

#include <algorithm>
#include <optional>

#include <LibStrokeset/CSubPath.h>

#include "elements/Geometry.h"
#include "optimize/indexed/CIndexedDuplicateScan.h"
#include "optimize/indexed/CIndexedAutojoin.h"
#include "optimize/CJumpDistanceOrdering.h"
#include "optimize/reference/CPairScan.h"
#include "optimize/common/CollectionCast.h"

namespace LibStrokeset {

CPathOptimizer::CPathOptimizer(std::list<CCollection*>& collections,
                               const std::atomic<bool>& aborted,
                               const COptimizationParameters& parameters,
                               CProgressReporter& reporter, EOptimizerEngine engine)
    : m_collections(collections), m_aborted(aborted), m_parameters(parameters), m_rules(parameters),
      m_reporter(reporter), m_engine(engine) {}

bool CPathOptimizer::aborted() const { return m_aborted.load(); }

SRunCounters CPathOptimizer::run() {
    m_counters = SRunCounters();
    m_counters.startSize = static_cast<int>(m_collections.size());
    m_counters.currentSize = m_counters.startSize;
    if (m_parameters.removeDuplicatedPaths() || m_parameters.removeDuplicatedReversedPaths()) {
        removeDuplicates();
    }
    // Autojoin does not look at the flag before it begins.
    if (m_parameters.autojoinPaths() || m_parameters.autojoinReversedPaths()) {
        autojoin();
    }
    // The snapshot holds for the pair scans only: later phases remove collections behind
    // its back.
    m_snapshot.reset();
    if (m_parameters.removeDegeneratedLines() && !aborted()) {
        removeDegenerateLines();
    }
    if (m_parameters.closeSubpaths() && !aborted()) {
        closeSubpaths();
    }
    if (m_parameters.minimizeJumpDistances() && !aborted()) {
        CJumpDistanceOrdering ordering(m_collections, m_aborted, m_reporter, m_engine);
        ordering.run(m_counters);
    }
    return m_counters;
}

void CPathOptimizer::removeDuplicates() {
    const int size = m_counters.startSize;
    m_counters.estimatedRuns += pairCount(size);
    m_counters.passes = 1;
    const float denominator = pairCountAsFloat(size);
    const SScanContext context{m_collections, m_aborted, m_rules, [&](unsigned long long steps) {
                                   m_reporter.report(1, steps, denominator);
                               }};
    // Equal paths are found by their hashes whatever the coordinates and the tolerance.
    m_counters.performedRuns +=
        m_engine == EOptimizerEngine::eReference
            ? CPairScan(context).removeDuplicates(m_counters.duplicated)
            : CIndexedDuplicateScan(context, snapshot()).run(m_counters.duplicated);
    m_counters.currentSize = static_cast<int>(m_collections.size());
}

void CPathOptimizer::autojoin() {
    m_counters.estimatedRuns += pairCount(m_counters.startSize);
    if (m_counters.currentSize <= 1) {
        return;
    }
    std::optional<CIndexedAutojoin> indexed;
    if (m_engine == EOptimizerEngine::eIndexed &&
        CIndexedAutojoin::serves(m_parameters.positionTolerance())) {
        indexed.emplace(snapshot(), m_parameters.positionTolerance());
    }
    float previousPassPercent = 0.0f;
    // Every join shrinks the list by one: passes repeat until one joins nothing.
    int sizeBeforePass = m_counters.startSize + 1;
    while (m_counters.currentSize != sizeBeforePass) {
        ++m_counters.passes;
        sizeBeforePass = m_counters.currentSize;
        float passPercent = 0.0f;
        const float denominator = pairCountAsFloat(sizeBeforePass);
        const SScanContext context{
            m_collections, m_aborted, m_rules, [&](unsigned long long steps) {
                float percent = 0.0f;
                if (m_reporter.due(steps, denominator, percent)) {
                    passPercent = percent;
                    m_reporter.call(2, std::max(percent, previousPassPercent));
                }
            }};
        m_counters.performedRuns += indexed ? indexed->pass(context, m_counters.autojoined)
                                            : CPairScan(context).joinPass(m_counters.autojoined);
        previousPassPercent = passPercent;
        m_counters.currentSize = static_cast<int>(m_collections.size());
        if (aborted() || m_counters.currentSize <= 1) {
            return;
        }
    }
}

CScanSnapshot& CPathOptimizer::snapshot() {
    if (!m_snapshot) {
        m_snapshot.emplace(m_collections, m_aborted);
    }
    return *m_snapshot;
}

void CPathOptimizer::removeDegenerateLines() {
    m_counters.estimatedRuns += static_cast<unsigned long long>(m_counters.currentSize);
    ++m_counters.passes;
    const float tolerance = m_parameters.positionTolerance();
    unsigned long long steps = 0;
    for (CCollection* collection : m_collections) {
        ++steps;
        auto* subPath = collectionCast<CSubPath>(collection);
        if (subPath == nullptr) {
            continue;
        }
        // Whether a line goes depends on that line alone, so one sweep removes them all;
        // erase then renumbers the end copies once, as it would after each single removal.
        std::vector<CLine>& lines = subPath->getLines();
        const auto kept =
            std::remove_if(lines.begin(), lines.end(), [tolerance](const CLine& line) {
                return tolerance > distance(line.getPosition(), line.getEndPosition());
            });
        const auto removed = std::distance(kept, lines.end());
        if (removed > 0) {
            m_counters.degenerated += static_cast<int>(removed);
            subPath->erase(kept, lines.end());
        }
        if (aborted()) {
            break;
        }
    }
    m_counters.performedRuns += steps;
    // Sub-paths without lines have no end points for the later phases: they go.
    for (auto it = m_collections.begin(); it != m_collections.end();) {
        auto* subPath = collectionCast<CSubPath>(*it);
        if (subPath != nullptr && subPath->isEmpty()) {
            delete subPath;
            it = m_collections.erase(it);
        } else {
            ++it;
        }
    }
}

void CPathOptimizer::closeSubpaths() {
    m_counters.estimatedRuns += static_cast<unsigned long long>(m_counters.currentSize);
    ++m_counters.passes;
    const float tolerance = m_parameters.positionTolerance();
    const float denominator = static_cast<float>(m_counters.currentSize);
    unsigned long long steps = 0;
    for (CCollection* collection : m_collections) {
        ++steps;
        auto* subPath = collectionCast<CSubPath>(collection);
        if (subPath == nullptr || subPath->getPointsCount() < 4) {
            continue;
        }
        m_reporter.report(3, steps, denominator);
        const float gap = distance(subPath->getFirstPosition(), subPath->getLastPosition());
        if (gap > zeroDistance && tolerance > gap) {
            subPath->setEndPosition(subPath->getFirstPosition());
            ++m_counters.closed;
        }
        if (aborted()) {
            break;
        }
    }
    m_counters.performedRuns += steps;
}

} // namespace LibStrokeset
