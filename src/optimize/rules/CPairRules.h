#pragma once

#include <LibStrokeset/COptimizationParameters.h>

namespace LibStrokeset {

class CSubPath;

/// The rules for one pair of sub-paths, an earlier `outer` and a later `inner`: is the
/// inner a duplicate of the outer, may it be joined onto it, and the join itself. Every scan
/// of the optimizer, exhaustive or indexed, asks these questions and nothing else about a
/// pair, so all scans decide alike.
class CPairRules {
public:
    explicit CPairRules(const COptimizationParameters& parameters);

    const COptimizationParameters& parameters() const;

    /// Whether `inner` repeats `outer` point for point and pen for pen, forwards or
    /// backwards, as the flags allow. The cheap end-point tests come first.
    bool isDuplicate(CSubPath& outer, CSubPath& inner) const;

    /// The first code of `mayAutoJoin` (1 to 4) when the flags allow joining by it, else 0:
    /// a pair whose first code is not allowed is not joined by a later one either.
    int joinCode(CSubPath& outer, CSubPath& inner) const;

    /// Joins `inner` onto `outer` by a code that joinCode gave; `inner` may be changed and is
    /// left for the caller to delete.
    static void join(CSubPath& outer, CSubPath& inner, int code);

    /// Puts the lines of `from`, as prependLine once per line from the last to the first
    /// would, in front of `into`: the new lines carry the pen of into's first point, new
    /// indices except the last, which keeps into's start index. The end point of `from` is
    /// dropped. Nothing happens when either is empty.
    static void prependAll(CSubPath& into, const CSubPath& from);

private:
    const COptimizationParameters& m_parameters;
};

} // namespace LibStrokeset
