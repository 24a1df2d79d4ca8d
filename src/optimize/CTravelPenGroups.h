#pragma once

#include <cstdint>
#include <vector>

#include "optimize/SJumpEntry.h"

namespace LibStrokeset {

/// Splits a stretch of entries into the groups that are drawn one after the other when pens
/// go together: a group per pen, pens in the order in which the entries first use them.
///
/// A path that starts in one pen and ends in another (joined from paths of two pens) would
/// cost two changes inside a group; when its pens are those of two neighbouring groups it
/// becomes a bridge between them instead, run in the direction that continues the pen.
class CTravelPenGroups {
public:
    struct SGroup {
        std::vector<std::uint32_t> entries; // in drawing order
        /// A bridge: one path, placed as it is or reversed, never reordered.
        bool bridge = false;
        bool reversed = false;
    };

    /// Groups entries first .. last - 1; with `byPen` false, all in one group.
    static std::vector<SGroup> of(const std::vector<SJumpEntry>& entries, std::uint32_t first,
                                  std::uint32_t last, bool byPen);

private:
    /// The pens a collection's first and last points are written with.
    static void pensOf(const SJumpEntry& entry, unsigned short& first, unsigned short& last);
};

} // namespace LibStrokeset
