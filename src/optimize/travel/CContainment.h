#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "optimize/travel/CContourPolygon.h"

namespace LibStrokeset {

/// How CContainment finds the pairs: by testing every pair (the reference), or through a
/// grid of the contours' bounding boxes. Both answer alike.
enum class EContainmentRoute { eAllPairs, eIndexed };

/// Which closed contours lie inside which. A contour lies inside another when its bounding
/// box lies within the other's, it comes first in the order of bounding-box area (then of
/// number), and its lowest vertex (least x, then least y) that is not on the other's boundary
/// is inside it by the even-odd rule; a contour with every vertex on the other's boundary (the same
/// contour, say) is not inside it. The order makes the relation acyclic whatever the contours are:
/// two that cross each other cannot each lie inside the other.
class CContainment {
public:
    /// The pairs (inner, outer), numbers into `contours`, sorted.
    static std::vector<std::pair<std::uint32_t, std::uint32_t>>
    of(const std::vector<CContourPolygon>& contours, EContainmentRoute route);

    /// The rule for one pair.
    static bool liesInside(const CContourPolygon& inner, std::uint32_t innerNumber,
                           const CContourPolygon& outer, std::uint32_t outerNumber);

private:
    static std::vector<std::pair<std::uint32_t, std::uint32_t>>
    allPairs(const std::vector<CContourPolygon>& contours);
    static std::vector<std::pair<std::uint32_t, std::uint32_t>>
    indexed(const std::vector<CContourPolygon>& contours);
};

} // namespace LibStrokeset
