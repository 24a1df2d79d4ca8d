#pragma once

#include <cstdint>
#include <vector>

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

    /// The pens an entry's first and last points are drawn with.
    struct SPens {
        unsigned short first;
        unsigned short last;
    };

    /// Groups `members` (entry numbers in drawing order; `pens` is indexed by entry number);
    /// with `byPen` false, all in one group.
    static std::vector<SGroup> of(const std::vector<SPens>& pens,
                                  const std::vector<std::uint32_t>& members, bool byPen);
};

} // namespace LibStrokeset
