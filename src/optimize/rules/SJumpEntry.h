#pragma once

#include <Eigen/Core>

#include <LibStrokeset/CCollection.h>

namespace LibStrokeset {

/// A collection of the ordering's working sequence with its jump end points.
struct SJumpEntry {
    CCollection* collection;
    /// False for unsupported records and sub-paths without lines: they have no end points.
    bool hasEnds;
    Eigen::RowVector3f start;
    Eigen::RowVector3f end;

    static SJumpEntry describe(CCollection* collection);
    /// The same for a collection known to hold exactly one dot.
    static SJumpEntry describeSingleDot(CCollection* collection);
};

} // namespace LibStrokeset
