#pragma once

#include <atomic>
#include <list>
#include <vector>

#include <Eigen/Core>

#include <LibStrokeset/CCollection.h>

#include "optimize/CProgressReporter.h"
#include "optimize/SRunCounters.h"

namespace LibStrokeset {

/// The last phase of an optimize run: reorders the collections greedily, nearest jump first,
/// reversing sub-paths where their far end is nearer, and adopts the new order only when
/// its pen-up travel is shorter than the current one.
class CJumpDistanceOrdering {
public:
    CJumpDistanceOrdering(std::list<CCollection*>& collections, const std::atomic<bool>& aborted,
                          CProgressReporter& reporter);

    /// Adds its pass, estimate and steps to the counters, sets both jump totals and marks
    /// the run as reordered when it adopts the new order.
    void run(SRunCounters& counters);

private:
    /// A collection of the working sequence with its jump end points.
    struct SEntry {
        CCollection* collection;
        bool hasEnds;
        Eigen::RowVector3f start;
        Eigen::RowVector3f end;
    };

    static SEntry describe(CCollection* collection);
    float sumOfJumps(const std::vector<SEntry>& entries) const;
    bool aborted() const;

    std::list<CCollection*>& m_collections;
    const std::atomic<bool>& m_aborted;
    CProgressReporter& m_reporter;
};

} // namespace LibStrokeset
