#pragma once

#include <cfloat>
#include <cstddef>

#include "elements/Geometry.h"
#include "optimize/rules/SJumpEntry.h"

namespace LibStrokeset {

/// The next entry to place, as found so far from one pen position: the shortest jump wins,
/// among equal jumps the earliest entry in working-sequence order. An entry is taken
/// reversed only when its end is strictly nearer than its start, and only jumps shorter than
/// FLT_MAX count. Offering the entries in order or in any other order gives the same choice.
struct SJumpChoice {
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    float length = FLT_MAX;
    std::size_t index = none;
    bool reversed = false;

    bool found() const { return index != none; }

    /// Offers the entry at working-sequence position `position`, which has end points.
    void offer(const Eigen::RowVector3f& from, const SJumpEntry& entry, std::size_t position) {
        offer(from, entry.start, entry.end, position);
    }

    /// The same with the entry's start and end.
    void offer(const Eigen::RowVector3f& from, const Eigen::RowVector3f& start,
               const Eigen::RowVector3f& end, std::size_t position) {
        const float forward = distance(from, start);
        const float backward = distance(from, end);
        // A NaN jump compares false everywhere, so such an entry never wins.
        const bool takeReversed = forward > backward;
        const float jump = takeReversed ? backward : forward;
        if (jump < length || (jump == length && found() && position < index)) {
            length = jump;
            index = position;
            reversed = takeReversed;
        }
    }
};

} // namespace LibStrokeset
