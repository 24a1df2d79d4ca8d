#pragma once

#include <atomic>
#include <functional>
#include <vector>

#include "optimize/SJumpEntry.h"
#include "optimize/SPlacement.h"

namespace LibStrokeset {

/// Places the working sequence nearest jump first, from its first entry, offering every
/// remaining entry at every placement and reporting after each placement: the reference
/// that the indexed placement must match.
class CGreedyPlacement {
public:
    /// `report` is called with the candidate tests so far.
    CGreedyPlacement(const std::atomic<bool>& aborted,
                     std::function<void(unsigned long long)> report);

    SPlacement place(const std::vector<SJumpEntry>& entries);

private:
    const std::atomic<bool>& m_aborted;
    std::function<void(unsigned long long)> m_report;
};

} // namespace LibStrokeset
