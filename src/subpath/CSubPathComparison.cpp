// Comparison of sub-paths: equality, meeting ends and the autojoin test.

#include <LibStrokeset/CSubPath.h>

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

} // namespace LibStrokeset
