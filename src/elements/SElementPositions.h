#pragma once

#include <optional>

#include "elements/CFirstPositions.h"

namespace LibStrokeset {

/// What a long collection's lookups know of its indices, each table built by the first
/// lookup that needs it: where each index first occurs among the dots or records, or among
/// the start copies of a sub-path's lines, and among the end copies.
struct SElementPositions {
    std::optional<CFirstPositions> first;
    std::optional<CFirstPositions> ends;
};

} // namespace LibStrokeset
