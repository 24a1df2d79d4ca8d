#include "optimize/CIndexedGreedyPlacement.h"

#include "optimize/CJumpTree.h"
#include "optimize/SJumpChoice.h"

namespace LibStrokeset {

CIndexedGreedyPlacement::CIndexedGreedyPlacement(const std::atomic<bool>& aborted,
                                                 std::function<void(unsigned long long)> report)
    : m_aborted(aborted), m_report(std::move(report)) {}

SPlacement CIndexedGreedyPlacement::place(const std::vector<SJumpEntry>& entries) {
    // Reading the clock at every placement would cost more than most placements.
    constexpr std::size_t reportEvery = 256;
    SPlacement placement;
    placement.order.reserve(entries.size());
    placement.reversed.reserve(entries.size());
    CJumpTree tree(entries);
    std::vector<bool> placed(entries.size(), false);
    std::size_t remaining = entries.size();
    std::size_t firstRemaining = 0;
    std::size_t next = 0;
    bool nextReversed = false;
    while (!m_aborted.load()) {
        placement.order.push_back(next);
        placement.reversed.push_back(nextReversed);
        placed[next] = true;
        tree.remove(next);
        --remaining;
        // The exhaustive placement tests every remaining entry.
        placement.steps += remaining;
        const SJumpEntry& entry = entries[next];
        SJumpChoice choice;
        if (entry.hasEnds) {
            tree.offerNearest(nextReversed ? entry.start : entry.end, next, choice);
        }
        if (choice.found()) {
            next = choice.index;
            nextReversed = choice.reversed;
        } else {
            // Without a jump to take, the first remaining entry follows.
            while (firstRemaining < entries.size() && placed[firstRemaining]) {
                ++firstRemaining;
            }
            next = firstRemaining;
            nextReversed = false;
        }
        if (choice.length > zeroDistance && choice.length < FLT_MAX) {
            placement.total += choice.length;
        }
        if (placement.order.size() % reportEvery == 0) {
            m_report(placement.steps);
        }
        if (m_aborted.load() || remaining == 0) {
            break;
        }
    }
    placement.complete = remaining == 0 && !m_aborted.load();
    return placement;
}

} // namespace LibStrokeset
