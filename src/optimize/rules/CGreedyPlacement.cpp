#include "optimize/rules/CGreedyPlacement.h"

#include <utility>

#include "optimize/indexed/CIndexedEntries.h"
#include "optimize/reference/CScannedEntries.h"
#include "optimize/rules/SJumpChoice.h"

namespace LibStrokeset {

CGreedyPlacement::CGreedyPlacement(const std::atomic<bool>& aborted,
                                   std::function<void(unsigned long long)> report)
    : m_aborted(aborted), m_report(std::move(report)) {}

SPlacement CGreedyPlacement::place(const std::vector<SJumpEntry>& entries,
                                   EOptimizerEngine engine) {
    if (engine == EOptimizerEngine::eReference) {
        CScannedEntries remaining(entries, m_aborted);
        return place(entries.size(), remaining);
    }
    CIndexedEntries remaining(entries, m_aborted);
    return place(entries.size(), remaining);
}

SPlacement CGreedyPlacement::place(CJumpTree::CFiler&& filer) {
    const std::size_t count = filer.count();
    CIndexedEntries remaining(std::move(filer), m_aborted);
    return place(count, remaining);
}

template <class Remaining>
SPlacement CGreedyPlacement::place(std::size_t count, Remaining& remaining) {
    SPlacement placement;
    placement.order.reserve(count);
    placement.reversed.reserve(count);
    std::size_t left = count;
    std::size_t next = 0;
    bool nextReversed = false;
    while (!m_aborted.load()) {
        placement.order.push_back(next);
        placement.reversed.push_back(nextReversed);
        remaining.remove(next);
        --left;
        SJumpChoice choice;
        placement.steps += remaining.offerAfter(next, nextReversed, choice);
        // Without a jump to take, the first remaining entry follows.
        next = choice.found() ? choice.index : left > 0 ? remaining.first() : 0;
        nextReversed = choice.found() && choice.reversed;
        if (choice.length > zeroDistance && choice.length < FLT_MAX) {
            placement.total += choice.length;
        }
        // A report after every placement: a callback that slept in the phase's opening
        // call hears of the first placement, not of the 256th.
        m_report(placement.steps);
        if (m_aborted.load() || left == 0) {
            break;
        }
    }
    placement.complete = left == 0 && !m_aborted.load();
    return placement;
}

} // namespace LibStrokeset
