#pragma once

#include <atomic>
#include <functional>
#include <vector>

#include "optimize/EOptimizerEngine.h"
#include "optimize/indexed/CJumpTree.h"
#include "optimize/rules/SJumpEntry.h"
#include "optimize/rules/SPlacement.h"

namespace LibStrokeset {

/// Places the working sequence nearest jump first, from its first entry: after each entry
/// the remaining one with the shortest jump follows (SJumpChoice), or the first remaining
/// one when no jump can be taken. The engine decides how the remaining entries are
/// searched, never the order.
class CGreedyPlacement {
public:
    /// `report` is called with the candidate tests so far.
    CGreedyPlacement(const std::atomic<bool>& aborted,
                     std::function<void(unsigned long long)> report);

    SPlacement place(const std::vector<SJumpEntry>& entries, EOptimizerEngine engine);
    /// The same with the indexed engine, over the entries a filer was given.
    SPlacement place(CJumpTree::CFiler&& filer);

private:
    template <class Remaining> SPlacement place(std::size_t count, Remaining& remaining);

    const std::atomic<bool>& m_aborted;
    std::function<void(unsigned long long)> m_report;
};

} // namespace LibStrokeset
