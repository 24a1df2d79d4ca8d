#pragma once

#include <atomic>
#include <list>

#include <LibStrokeset/CCollection.h>

#include "optimize/common/CProgressReporter.h"
#include "optimize/EOptimizerEngine.h"
#include "optimize/common/SRunCounters.h"

namespace LibStrokeset {

/// The last phase of an optimize run: reorders the collections greedily, nearest jump first,
/// reversing sub-paths where their far end is nearer, and adopts the new order only when
/// its pen-up travel is shorter than the current one.
class CJumpDistanceOrdering {
public:
    CJumpDistanceOrdering(std::list<CCollection*>& collections, const std::atomic<bool>& aborted,
                          CProgressReporter& reporter, EOptimizerEngine engine);

    /// Adds its pass, estimate and steps to the counters, sets both jump totals and marks
    /// the run as reordered when it adopts the new order.
    void run(SRunCounters& counters);

private:
    bool aborted() const;

    std::list<CCollection*>& m_collections;
    const std::atomic<bool>& m_aborted;
    CProgressReporter& m_reporter;
    EOptimizerEngine m_engine;
};

} // namespace LibStrokeset
