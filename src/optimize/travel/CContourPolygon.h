#pragma once

#include <cstdint>
#include <vector>

#include <Eigen/Core>

namespace LibStrokeset {

/// A closed contour in the plane (z is ignored) for point tests: on its boundary, or inside
/// by the even-odd rule. Long contours sort their edges into horizontal bands, so that a test
/// reads only the edges at the point's height; short ones read them all.
class CContourPolygon {
public:
    /// The contour through `points`, the last joined back to the first. A contour with a
    /// coordinate that is not finite has no bounding box and holds no point.
    explicit CContourPolygon(std::vector<Eigen::Vector2d> points, bool banded = true);

    bool isFinite() const { return m_finite; }
    const Eigen::Vector2d& low() const { return m_low; }
    const Eigen::Vector2d& high() const { return m_high; }
    const std::vector<Eigen::Vector2d>& points() const { return m_points; }
    /// The vertices by x, then y: an order that neither the contour's start nor its direction
    /// changes.
    const std::vector<std::uint32_t>& lowestFirst() const { return m_lowestFirst; }
    /// The area of the bounding box, in double.
    double boxArea() const { return (m_high.x() - m_low.x()) * (m_high.y() - m_low.y()); }
    /// Whether the other contour's bounding box lies within this one's (edges may touch).
    bool boxHolds(const CContourPolygon& other) const;

    /// Whether p lies on an edge (its ends included), exactly as the doubles say.
    bool onBoundary(const Eigen::Vector2d& p) const;
    /// Even-odd: whether a ray from p to the right crosses the edges an odd number of times,
    /// each edge holding its lower end and not its upper one. Meant for points that are not
    /// on the boundary.
    bool holds(const Eigen::Vector2d& p) const;

private:
    /// Calls visit(a, b) for every edge whose height range can include y; stops when it
    /// returns true, and returns whether it did.
    template <class Visit> bool anyEdgeAt(double y, Visit visit) const;
    /// The band of a height, computed alike for edges and points.
    std::size_t bandAt(double y) const;

    std::vector<Eigen::Vector2d> m_points;
    std::vector<std::uint32_t> m_lowestFirst;
    Eigen::Vector2d m_low = Eigen::Vector2d::Zero(), m_high = Eigen::Vector2d::Zero();
    bool m_finite = true;
    /// Edge numbers by band of height; empty when the contour is read whole.
    std::vector<std::vector<std::uint32_t>> m_bands;
    double m_bandHeight = 0.0;
};

} // namespace LibStrokeset
