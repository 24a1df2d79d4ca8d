#include "optimize/CGreedyPlacement.h"

#include <numeric>

#include "optimize/SJumpChoice.h"

namespace LibStrokeset {

CGreedyPlacement::CGreedyPlacement(const std::atomic<bool>& aborted,
                                   std::function<void(unsigned long long)> report)
    : m_aborted(aborted), m_report(std::move(report)) {}

SPlacement CGreedyPlacement::place(const std::vector<SJumpEntry>& entries) {
    SPlacement placement;
    std::vector<std::size_t> remaining(entries.size());
    std::iota(remaining.begin(), remaining.end(), std::size_t(0));
    std::size_t next = 0;
    bool nextReversed = false;
    while (!m_aborted.load()) {
        const SJumpEntry& placed = entries[remaining[next]];
        placement.order.push_back(remaining[next]);
        placement.reversed.push_back(nextReversed);
        remaining.erase(remaining.begin() + static_cast<std::ptrdiff_t>(next));
        const Eigen::RowVector3f from = nextReversed ? placed.start : placed.end;
        SJumpChoice choice;
        for (std::size_t j = 0; j < remaining.size(); ++j) {
            ++placement.steps;
            const SJumpEntry& candidate = entries[remaining[j]];
            if (placed.hasEnds && candidate.hasEnds) {
                choice.offer(from, candidate, j);
            }
            if (m_aborted.load()) {
                break;
            }
        }
        // Without a jump to take, the first remaining entry follows.
        next = choice.found() ? choice.index : 0;
        nextReversed = choice.found() && choice.reversed;
        if (choice.length > zeroDistance && choice.length < FLT_MAX) {
            placement.total += choice.length;
        }
        m_report(placement.steps);
        if (m_aborted.load() || remaining.empty()) {
            break;
        }
    }
    placement.complete = remaining.empty() && !m_aborted.load();
    return placement;
}

} // namespace LibStrokeset
