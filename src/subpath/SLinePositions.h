#pragma once

#include <optional>

#include "elements/CFirstPositions.h"

namespace LibStrokeset {

/// Where each start index, and each end index, of a long sub-path's lines first occurs; each
/// is built by the first lookup that needs it.
struct SLinePositions {
    std::optional<CFirstPositions> starts;
    std::optional<CFirstPositions> ends;
};

} // namespace LibStrokeset
