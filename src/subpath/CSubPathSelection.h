#pragma once

#include <set>

#include <Eigen/Core>

#include <LibStrokeset/CSubPath.h>

namespace LibStrokeset {

/// The edits of a sub-path by a set of opcode indices, each in one pass over the lines, so
/// that a long sub-path with most of its points selected costs about lines x log. Beside
/// each stands the straightforward form, searching the lines once per index, kept as the
/// reference it must equal.
class CSubPathSelection {
public:
    /// Removes every point the set names, each resolved against the numbering the host used,
    /// as removing them one at a time from the back does. True when every index named a point.
    static bool deletePoints(CSubPath& path, const std::set<unsigned int>& named);
    static bool deletePointsOneByOne(CSubPath& path, const std::set<unsigned int>& named);

    /// Gives the pen to the first start copy and the first end copy carrying each index. True
    /// when at least as many copies changed as the set has members (an inner point counts
    /// twice); true for the empty set.
    /// A few indices in a long sub-path are searched one by one (the lookup tables), others
    /// take one pass; both change the same copies.
    static bool changePen(CSubPath& path, const std::set<unsigned int>& named,
                          unsigned short penNumber);
    static bool changePenInOnePass(CSubPath& path, const std::set<unsigned int>& named,
                                   unsigned short penNumber);
    static bool changePenOneByOne(CSubPath& path, const std::set<unsigned int>& named,
                                  unsigned short penNumber);

    /// Maps the point each index names, as CSubPath::transformPoints specifies: the first line
    /// starting at it, else the end of the last line. True when every index named a point. A
    /// few indices in a long sub-path are searched one by one, others take one pass.
    static bool transformPoints(CSubPath& path, std::set<unsigned int> named,
                                const Eigen::Matrix<float, 3, 4>& matrix);
    static bool transformPointsInOnePass(CSubPath& path, std::set<unsigned int> named,
                                         const Eigen::Matrix<float, 3, 4>& matrix);
};

} // namespace LibStrokeset
