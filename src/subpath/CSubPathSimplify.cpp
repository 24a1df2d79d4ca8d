// Simplification of a sub-path: drops the inner points that stray less than a tolerance from
// the chord between the points kept around them.

#include <LibStrokeset/CSubPath.h>

#include <cmath>

#include "elements/Geometry.h"

namespace LibStrokeset {

void CSubPath::simplify(float tolerance) {
    forgetPositions();
    if (m_lines.size() < 2) {
        return;
    }
    // P0 is the start of line 0; every later point is read from its end copy.
    const auto point = [this](std::size_t k) -> Eigen::RowVector3f {
        return k == 0 ? m_lines[0].getPosition() : m_lines[k - 1].getEndPosition();
    };
    std::size_t anchor = 0;
    std::size_t probe = 2;
    while (probe < m_lines.size() + 1) {
        const Eigen::RowVector3f a = point(anchor);
        const Eigen::RowVector3f b = point(probe);
        const float length = distance(a, b);
        if (length == 0.0f) {
            ++probe; // a chord of zero length tests nothing
            continue;
        }
        const float inverse = 1.0f / length;
        const float ux = (b.x() - a.x()) * inverse;
        const float uy = (b.y() - a.y()) * inverse;
        bool deviates = false;
        for (std::size_t k = anchor + 1; k < probe && !deviates; ++k) {
            const Eigen::RowVector3f p = point(k);
            const float offset = uy * (p.x() - a.x()) - ux * (p.y() - a.y());
            deviates = std::fabs(offset) > tolerance;
        }
        if (!deviates) {
            ++probe;
            continue;
        }
        if (anchor + 1 < probe - 2) {
            removeInnerPoints(anchor + 1, probe - 3);
        }
        ++anchor;
        probe = anchor + 2;
    }
    const std::size_t lines = m_lines.size();
    if (anchor + 1 < lines - 1) {
        removeInnerPoints(anchor + 1, lines - 2);
    }
    updateIndexRange();
}

} // namespace LibStrokeset
