#include "optimize/CPathOptimizer.h"

#include <algorithm>
#include <iterator>

#include <LibStrokeset/CSubPath.h>

#include "elements/Geometry.h"
#include "optimize/CJumpDistanceOrdering.h"

namespace LibStrokeset {

namespace {

/// (s - 1) * s / 2 in unsigned 64-bit arithmetic: the pairs of s collections.
unsigned long long pairCount(int size) {
    return static_cast<unsigned long long>(size - 1) * static_cast<unsigned long long>(size) / 2;
}

float pairCountAsFloat(int size) {
    return static_cast<float>(size - 1) * static_cast<float>(size) * 0.5f;
}

/// Puts every line of `from`, last first, in front of `into`: `from` is drawn before it.
/// The end of `from` is dropped; `into` keeps its start point.
void prependAll(CSubPath& into, const CSubPath& from) {
    for (auto line = from.rbegin(); line != from.rend(); ++line) {
        into.prependLine(line->getPosition());
    }
}

} // namespace

CPathOptimizer::CPathOptimizer(std::list<CCollection*>& collections,
                               const std::atomic<bool>& aborted,
                               const COptimizationParameters& parameters,
                               CProgressReporter& reporter)
    : m_collections(collections), m_aborted(aborted), m_parameters(parameters),
      m_reporter(reporter) {}

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
    if (m_parameters.removeDegeneratedLines() && !aborted()) {
        removeDegenerateLines();
    }
    if (m_parameters.closeSubpaths() && !aborted()) {
        closeSubpaths();
    }
    if (m_parameters.minimizeJumpDistances() && !aborted()) {
        CJumpDistanceOrdering ordering(m_collections, m_aborted, m_reporter);
        ordering.run(m_counters);
    }
    return m_counters;
}

template <class Report, class Test>
unsigned long long CPathOptimizer::pairScan(Report report, Test test) {
    unsigned long long steps = 0;
    // The last collection is never an outer; only inners are removed, so the collection
    // nearer the front survives every pair and may grow while its inners are scanned.
    for (auto outer = m_collections.begin();
         outer != m_collections.end() && std::next(outer) != m_collections.end(); ++outer) {
        auto* outerPath = dynamic_cast<CSubPath*>(*outer);
        if (outerPath == nullptr || outerPath->isEmpty()) {
            continue;
        }
        for (auto inner = std::next(outer); inner != m_collections.end();) {
            report(++steps);
            auto* innerPath = dynamic_cast<CSubPath*>(*inner);
            if (innerPath != nullptr && test(*outerPath, *innerPath)) {
                delete innerPath;
                inner = m_collections.erase(inner);
                continue;
            }
            if (aborted()) {
                return steps;
            }
            ++inner;
        }
        if (aborted()) {
            return steps;
        }
    }
    return steps;
}

bool CPathOptimizer::isDuplicate(CSubPath& outer, CSubPath& inner) {
    const float tolerance = m_parameters.positionTolerance();
    // The cheap end-point tests come first; the exact comparison only for pairs that pass.
    if (m_parameters.removeDuplicatedPaths() && outer.hasEqualStartAndEndPoints(inner, tolerance) &&
        outer.isEqual(inner)) {
        return true;
    }
    if (m_parameters.removeDuplicatedReversedPaths() &&
        outer.hasEqualReversedStartAndEndPoints(inner, tolerance)) {
        CSubPath reversed(inner);
        reversed.reverse();
        return outer.isEqual(reversed);
    }
    return false;
}

void CPathOptimizer::removeDuplicates() {
    const int size = m_counters.startSize;
    m_counters.estimatedRuns += pairCount(size);
    m_counters.passes = 1;
    const float denominator = pairCountAsFloat(size);
    const auto report = [&](unsigned long long steps) { m_reporter.report(1, steps, denominator); };
    const auto test = [&](CSubPath& outer, CSubPath& inner) {
        const bool duplicate = isDuplicate(outer, inner);
        m_counters.duplicated += duplicate ? 1 : 0;
        return duplicate;
    };
    m_counters.performedRuns += pairScan(report, test);
    m_counters.currentSize = static_cast<int>(m_collections.size());
}

bool CPathOptimizer::joinInto(CSubPath& outer, CSubPath& inner) {
    const bool forward = m_parameters.autojoinPaths();
    const bool reversed = m_parameters.autojoinReversedPaths();
    switch (outer.mayAutoJoin(inner, m_parameters.positionTolerance())) {
    case 1: // outer's end meets inner's start
        if (!forward) return false;
        outer.joinSubpath(inner);
        return true;
    case 2: // outer's end meets inner's end
        if (!reversed) return false;
        inner.reverse();
        outer.joinSubpath(inner);
        return true;
    case 3: // inner's end meets outer's start
        if (!forward) return false;
        prependAll(outer, inner);
        return true;
    case 4: // inner's start meets outer's start
        if (!reversed) return false;
        inner.reverse();
        prependAll(outer, inner);
        return true;
    default: return false;
    }
}

void CPathOptimizer::autojoin() {
    m_counters.estimatedRuns += pairCount(m_counters.startSize);
    if (m_counters.currentSize <= 1) {
        return;
    }
    float previousPassPercent = 0.0f;
    // Every join shrinks the list by one: passes repeat until one joins nothing.
    int sizeBeforePass = m_counters.startSize + 1;
    while (m_counters.currentSize != sizeBeforePass) {
        ++m_counters.passes;
        sizeBeforePass = m_counters.currentSize;
        float passPercent = 0.0f;
        const float denominator = pairCountAsFloat(sizeBeforePass);
        const auto report = [&](unsigned long long steps) {
            float percent = 0.0f;
            if (m_reporter.due(steps, denominator, percent)) {
                passPercent = percent;
                m_reporter.call(2, std::max(percent, previousPassPercent));
            }
        };
        const auto test = [&](CSubPath& outer, CSubPath& inner) {
            const bool joined = joinInto(outer, inner);
            m_counters.autojoined += joined ? 1 : 0;
            return joined;
        };
        m_counters.performedRuns += pairScan(report, test);
        previousPassPercent = passPercent;
        m_counters.currentSize = static_cast<int>(m_collections.size());
        if (aborted() || m_counters.currentSize <= 1) {
            return;
        }
    }
}

void CPathOptimizer::removeDegenerateLines() {
    m_counters.estimatedRuns += static_cast<unsigned long long>(m_counters.currentSize);
    ++m_counters.passes;
    const float tolerance = m_parameters.positionTolerance();
    unsigned long long steps = 0;
    for (CCollection* collection : m_collections) {
        ++steps;
        auto* subPath = dynamic_cast<CSubPath*>(collection);
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
        auto* subPath = dynamic_cast<CSubPath*>(*it);
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
        auto* subPath = dynamic_cast<CSubPath*>(collection);
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
