#pragma once

#include <list>
#include <optional>
#include <vector>

#include <LibStrokeset/CCollection.h>

#include "optimize/indexed/CEndPointGrid.h"
#include "optimize/indexed/CScanSnapshot.h"
#include "optimize/rules/SScanContext.h"

namespace LibStrokeset {

/// The autojoin passes without comparing every pair: for each outer, grids of end points
/// offer the later sub-paths with an end near one of the outer's ends, in list order; the
/// first one the pair rules join is joined, and the search goes on behind it with the
/// outer's new ends. Joins, counts and reports as the exhaustive passes do. Lives for the
/// whole phase, so that a pass can build on what the earlier ones found.
class CIndexedAutojoin {
public:
    /// Whether it can serve this tolerance. One that accepts no distance (not above 0, or
    /// NaN) needs no search; an infinite one accepts any two finite ends, so that no index
    /// can rule a pair out, and the exhaustive passes serve it.
    static bool serves(float tolerance);

    CIndexedAutojoin(CScanSnapshot& snapshot, float tolerance);

    /// One pass; returns its pair steps and adds the joined paths to `joined`.
    unsigned long long pass(const SScanContext& context, int& joined);

private:
    /// The finite ends of the sub-paths still there at these ascending positions; fewer
    /// when the flag is set meanwhile.
    std::vector<CEndPointGrid::SEnd> endsOf(const std::vector<std::uint32_t>& positions,
                                            const std::atomic<bool>& aborted) const;
    /// Marks the outers that may join one of the sub-paths changed in the previous pass.
    std::vector<bool> outersNearChanges(const CEndPointGrid& moved,
                                        const std::atomic<bool>& aborted) const;
    /// Builds the grids and marks of a pass, unless the flag is set meanwhile.
    bool prepare(const std::atomic<bool>& aborted);
    /// Joins what the sub-path at position `outer` can join, searching `first` (and
    /// `second`) until it has joined something, then the grids of every sub-path.
    void joinAll(const SScanContext& context, std::uint32_t outer, const CEndPointGrid* first,
                 const CEndPointGrid* second, const CEndPointGrid& moved, int& joined);

    CScanSnapshot& m_snapshot;
    float m_tolerance;
    /// Every sub-path's ends as the phase began: stale for the moved ones.
    std::optional<CEndPointGrid> m_start;
    /// The pass's grids of the moved sub-paths and of those changed in the previous pass
    /// (none in the first pass), and the outers worth searching.
    std::optional<CEndPointGrid> m_movedGrid;
    std::optional<CEndPointGrid> m_changedGrid;
    std::vector<bool> m_worthSearching;
    /// The positions of sub-paths that joined something as outers: since the phase began,
    /// and in the previous pass; ascending.
    std::vector<std::uint32_t> m_moved;
    std::vector<std::uint32_t> m_changed;
    /// m_changed as marks; every position before the first pass.
    std::vector<bool> m_isChanged;
};

} // namespace LibStrokeset
