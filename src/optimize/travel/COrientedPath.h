#pragma once

#include <cstddef>
#include <vector>

#include <Eigen/Core>

#include <LibStrokeset/CSubPath.h>

namespace LibStrokeset {

/// A sub-path as the travel ordering writes it: as it stands, or entered at another point of a
/// closed path (rotated) and run backwards (reversed), with every segment still drawn by the
/// pen that drew it and every point where it was written.
///
/// A point without a pen is drawn with the pen in force, which moving the path would change;
/// such pens are resolved against the pen in force where the path stood, so that they keep
/// drawing with it wherever the path goes.
class COrientedPath {
public:
    /// `penInForce` is the writer's pen just before the path in the drawing's present order.
    COrientedPath(const CSubPath& path, std::size_t rotation, bool reversed,
                  unsigned short penInForce);

    /// Whether a closed path may be entered at another point: only when its first and last
    /// points are the same bits, since entering elsewhere makes them one point.
    static bool mayRotate(const CSubPath& path);

    /// The points written, n + 1 for n lines (0 for an empty path).
    std::size_t pointCount() const { return m_segmentPens.empty() ? 0 : m_segmentPens.size() + 1; }
    /// The pen written before point `point` of the new orientation; never "no pen".
    unsigned short pen(std::size_t point) const;

    /// Rotates and reverses `path` (the one given at construction, unchanged since) as planned,
    /// its indices as changeStart and reverse move them, and writes its points and pens.
    void applyTo(CSubPath& path) const;

private:
    bool keepsOrientation() const { return m_rotation == 0 && !m_reversed; }
    /// The segment of the present path that segment `segment` of the new orientation draws.
    std::size_t presentSegment(std::size_t segment) const;
    /// Where point `point` of the new orientation lies.
    const Eigen::RowVector3f& position(std::size_t point) const;

    std::size_t m_rotation;
    bool m_reversed;
    /// Written points and the pen of the move-to as the path stands.
    std::vector<Eigen::RowVector3f> m_points;
    unsigned short m_movePen = CDrawingElement::noPen;
    /// The pen that draws each segment as the path stands, resolved.
    std::vector<unsigned short> m_segmentPens;
};

} // namespace LibStrokeset
