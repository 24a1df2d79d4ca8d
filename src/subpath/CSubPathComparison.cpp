// Comparison of sub-paths and simplification of one polyline.

#include <LibStrokeset/CSubPath.h>

#include <cmath>

#include "elements/Geometry.h"

namespace LibStrokeset {

namespace {

/// Tolerance tests are strict, so a tolerance of 0 (or NaN) never matches.
bool within(const Eigen::RowVector3f& a, const Eigen::RowVector3f& b, float tolerance) {
    return tolerance > distance(a, b);
}

} // namespace

bool CSubPath::isEqual(const CSubPath& other) {
    if (m_lines.empty() || m_lines.size() != other.m_lines.size()) {
        return false;
    }
    const CLine& first = m_lines.front();
    const CLine& otherFirst = other.m_lines.front();
    if (!samePosition(first.getPosition(), otherFirst.getPosition()) ||
        first.getPenNumber() != otherFirst.getPenNumber()) {
        return false;
    }
    for (std::size_t k = 0; k < m_lines.size(); ++k) {
        if (!samePosition(m_lines[k].getEndPosition(), other.m_lines[k].getEndPosition()) ||
            m_lines[k].getEndPenNumber() != other.m_lines[k].getEndPenNumber()) {
            return false;
        }
    }
    return true;
}

bool CSubPath::hasEqualStartAndEndPoints(const CSubPath& other, float tolerance) {
    if (m_lines.empty() || other.m_lines.empty()) {
        return false;
    }
    return within(getFirstPosition(), other.getFirstPosition(), tolerance) &&
           within(getLastPosition(), other.getLastPosition(), tolerance);
}

bool CSubPath::hasEqualReversedStartAndEndPoints(const CSubPath& other, float tolerance) {
    if (m_lines.empty() || other.m_lines.empty()) {
        return false;
    }
    return within(getFirstPosition(), other.getLastPosition(), tolerance) &&
           within(getLastPosition(), other.getFirstPosition(), tolerance);
}

int CSubPath::mayAutoJoin(CSubPath& other, float tolerance) {
    if (m_lines.empty() || other.m_lines.empty()) {
        return 0;
    }
    if (within(getLastPosition(), other.getFirstPosition(), tolerance)) {
        return 1;
    }
    if (within(getLastPosition(), other.getLastPosition(), tolerance)) {
        return 2;
    }
    if (within(getFirstPosition(), other.getLastPosition(), tolerance)) {
        return 3;
    }
    if (within(getFirstPosition(), other.getFirstPosition(), tolerance)) {
        return 4;
    }
    return 0;
}

void CSubPath::simplify(float tolerance) {
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
        const float dx = b.x() - a.x();
        const float dy = b.y() - a.y();
        const float dz = b.z() - a.z();
        const float length = std::sqrt((dy * dy + dz * dz) + dx * dx);
        if (length == 0.0f) {
            ++probe; // a chord of zero length tests nothing
            continue;
        }
        const float inverse = 1.0f / length;
        const float ux = dx * inverse;
        const float uy = dy * inverse;
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
