#pragma once

#include "optimize/SScanContext.h"

namespace LibStrokeset {

/// One autojoin pass without comparing every pair: for each outer, the end-point grid
/// offers the later sub-paths with an end near one of the outer's ends, in list order, and
/// the first one the pair rules join is joined; the search goes on behind it with the
/// outer's new ends. Joins, counts and reports as the exhaustive pass does. Needs a finite
/// tolerance (CEndPointGrid::canIndex).
class CIndexedJoinPass {
public:
    explicit CIndexedJoinPass(const SScanContext& context);

    /// Returns the pass's pair steps and adds the joined paths to `joined`.
    unsigned long long run(int& joined);

private:
    const SScanContext& m_context;
};

} // namespace LibStrokeset
