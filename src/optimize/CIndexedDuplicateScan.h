#pragma once

#include "optimize/SScanContext.h"

namespace LibStrokeset {

class CScanSnapshot;

/// Duplicate removal without comparing every pair: every sub-path is hashed as the
/// duplicate test reads it, forwards and backwards, and an outer is tested by the pair rules
/// only against the later sub-paths whose hash equals its own. Removes, counts and reports
/// as the exhaustive scan does.
class CIndexedDuplicateScan {
public:
    CIndexedDuplicateScan(const SScanContext& context, CScanSnapshot& snapshot);

    /// Returns the pair steps and adds the removed paths to `duplicated`.
    unsigned long long run(int& duplicated);

private:
    const SScanContext& m_context;
    CScanSnapshot& m_snapshot;
};

} // namespace LibStrokeset
