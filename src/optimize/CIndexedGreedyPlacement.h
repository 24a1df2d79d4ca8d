#pragma once

#include <atomic>
#include <functional>
#include <vector>

#include "optimize/SJumpEntry.h"
#include "optimize/SPlacement.h"

namespace LibStrokeset {

/// Places the working sequence in the same greedy order as CGreedyPlacement, finding each
/// next entry in a k-d tree of the remaining end points. Counts the candidate tests that
/// the exhaustive placement makes, and reports now and then instead of at every placement.
class CIndexedGreedyPlacement {
public:
    /// `report` is called with the candidate tests so far.
    CIndexedGreedyPlacement(const std::atomic<bool>& aborted,
                            std::function<void(unsigned long long)> report);

    SPlacement place(const std::vector<SJumpEntry>& entries);

private:
    const std::atomic<bool>& m_aborted;
    std::function<void(unsigned long long)> m_report;
};

} // namespace LibStrokeset
