#include "optimize/travel/COrientedPath.h"

#include <algorithm>
#include <cstring>

#include "optimize/travel/CPenChangeCount.h"

namespace LibStrokeset {

namespace {
bool sameBits(const Eigen::RowVector3f& a, const Eigen::RowVector3f& b) {
    return std::memcmp(a.data(), b.data(), sizeof(float) * 3) == 0;
}
} // namespace

COrientedPath::COrientedPath(const CSubPath& path, std::size_t rotation, bool reversed,
                             unsigned short penInForce)
    : m_rotation(rotation), m_reversed(reversed) {
    const std::vector<CLine>& lines = path.getLines();
    if (lines.empty()) {
        return;
    }
    // What serialize writes: each point's start copy, the last one's end copy.
    const auto resolve = [&penInForce](unsigned short pen) {
        penInForce = CPenChangeCount::drawingPen(pen, penInForce);
        return penInForce;
    };
    m_movePen = resolve(lines.front().getPenNumber());
    m_points.reserve(lines.size() + 1);
    m_segmentPens.reserve(lines.size());
    for (std::size_t k = 0; k < lines.size(); ++k) {
        m_points.push_back(lines[k].getPosition());
        const bool last = k + 1 == lines.size();
        m_segmentPens.push_back(
            resolve(last ? lines[k].getEndPenNumber() : lines[k + 1].getPenNumber()));
    }
    m_points.push_back(lines.back().getEndPosition());
}

bool COrientedPath::mayRotate(const CSubPath& path) {
    return path.isClosed() &&
           sameBits(path.getLines().front().getPosition(), path.getLines().back().getEndPosition());
}

std::size_t COrientedPath::presentSegment(std::size_t segment) const {
    const std::size_t n = m_segmentPens.size();
    const std::size_t rotated = m_reversed ? n - 1 - segment : segment;
    return (m_rotation + rotated) % n;
}

const Eigen::RowVector3f& COrientedPath::position(std::size_t point) const {
    const std::size_t n = m_segmentPens.size();
    const std::size_t rotated = m_reversed ? n - point : point;
    // Rotation is planned only where the first and last points are the same bits.
    return m_rotation == 0 ? m_points[rotated] : m_points[(m_rotation + rotated) % n];
}

unsigned short COrientedPath::pen(std::size_t point) const {
    if (keepsOrientation()) {
        return point == 0 ? m_movePen : m_segmentPens[point - 1];
    }
    // The move-to takes the pen of the first segment, so that it costs no change of its own.
    return m_segmentPens[presentSegment(point == 0 ? 0 : point - 1)];
}

void COrientedPath::applyTo(CSubPath& path) const {
    std::vector<CLine>& lines = path.getLines();
    if (lines.empty()) {
        return;
    }
    if (keepsOrientation()) {
        // Only the pens left to the pen in force are written out.
        for (std::size_t k = 0; k < lines.size(); ++k) {
            if (lines[k].getPenNumber() == CDrawingElement::noPen) {
                lines[k].setPenNumber(pen(k));
            }
            if (lines[k].getEndPenNumber() == CDrawingElement::noPen) {
                lines[k].setEndPenNumber(pen(k + 1));
            }
        }
        return;
    }
    // As changeStart rotates (by line position) and reverse turns around, so that the indices
    // go with their points; then the written points and the segments' pens.
    std::rotate(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(m_rotation),
                lines.end());
    if (m_reversed) {
        path.reverse();
    }
    for (std::size_t k = 0; k < lines.size(); ++k) {
        lines[k].setPoint(position(k), false);
        lines[k].setEndPoint(position(k + 1));
        lines[k].setPenNumber(pen(k));
        lines[k].setEndPenNumber(pen(k + 1));
    }
}

} // namespace LibStrokeset
