// Sub-path structural edits. None of them renumbers: new points carry no index until the
// document is serialized, and edits that remove lines renumber only the end copies.

#include <LibStrokeset/CSubPath.h>

#include <algorithm>
#include <memory>

#include "elements/Geometry.h"
#include "subpath/CSubPathSelection.h"

namespace LibStrokeset {

bool CSubPath::close() {
    forgetPositions();
    if (m_lines.size() < 2) {
        return false;
    }
    if (!isClosed()) {
        appendLine(getFirstPosition());
    }
    return true;
}

CSubPath* CSubPath::open(unsigned int opcodeIndex) {
    // Only the segments leaving P1 .. Pn-2 can be cut out.
    if (m_lines.size() <= 2) {
        return nullptr;
    }
    const std::size_t k = findLineStartingAt(opcodeIndex, 1);
    if (k >= m_lines.size() - 1) {
        return nullptr;
    }
    return cutFront(k, k + 1);
}

CSubPath* CSubPath::split(unsigned int opcodeIndex) {
    if (m_lines.size() <= 1) {
        return nullptr;
    }
    const std::size_t k = findLineStartingAt(opcodeIndex, 1);
    if (k >= m_lines.size()) {
        return nullptr;
    }
    return cutFront(k, k);
}

CSubPath* CSubPath::cutFront(std::size_t kept, std::size_t removed) {
    forgetPositions();
    auto front = std::make_unique<CSubPath>();
    for (std::size_t j = 0; j < kept; ++j) {
        CLine line = m_lines[j];
        front->addLine(line);
    }
    m_lines.erase(m_lines.begin(), m_lines.begin() + static_cast<std::ptrdiff_t>(removed));
    updateIndexRange();
    return front.release();
}

void CSubPath::joinSubpath(CSubPath& other) {
    forgetPositions();
    other.forgetPositions();
    if (m_lines.empty() || other.m_lines.empty() || &other == this) {
        return; // nothing to meet, or nothing to append
    }
    const Eigen::RowVector3f midpoint = (getLastPosition() + other.getFirstPosition()) * 0.5f;
    m_lines.back().setEndPoint(midpoint, CElement::noIndex);
    other.m_lines.front().setPoint(midpoint, true);
    m_lines.reserve(m_lines.size() + other.m_lines.size());
    for (CLine& line : other.m_lines) {
        addLine(line);
    }
}

void CSubPath::connectSubpath(CSubPath& other) {
    forgetPositions();
    other.forgetPositions();
    if (m_lines.empty() || other.m_lines.empty() || &other == this) {
        return; // nothing to meet, or nothing to append
    }
    const CLine last = m_lines.back();
    const CLine& first = other.m_lines.front();
    if (!samePosition(last.getEndPosition(), first.getPosition())) {
        CLine bridge(last.getEndPosition(), first.getPosition(), last.getEndPenNumber(),
                     first.getPenNumber(), last.getEndOpcodeIndex(), first.getOpcodeIndex());
        addLine(bridge);
    }
    m_lines.reserve(m_lines.size() + other.m_lines.size());
    for (CLine& line : other.m_lines) {
        addLine(line);
    }
}

void CSubPath::reverse() {
    forgetPositions();
    std::reverse(m_lines.begin(), m_lines.end());
    for (CLine& line : m_lines) {
        line.reverse();
    }
}

bool CSubPath::changeStart(unsigned int opcodeIndex) {
    const std::size_t k = findLineStartingAt(opcodeIndex);
    if (k >= m_lines.size()) {
        return false;
    }
    std::rotate(m_lines.begin(), m_lines.begin() + static_cast<std::ptrdiff_t>(k), m_lines.end());
    forgetPositions();
    return true;
}

bool CSubPath::insertLinePoint(unsigned int opcodeIndex, Eigen::RowVector3f& position) {
    if (m_lines.empty()) {
        return false;
    }
    if (getEndIndex() == opcodeIndex) {
        appendLine(position);
        return true;
    }
    const std::size_t k = findLineStartingAt(opcodeIndex);
    if (k >= m_lines.size()) {
        return false;
    }
    // Both halves carry the pen of the point after the new one, in all four pen fields.
    const CLine old = m_lines[k];
    const unsigned short pen = old.getEndPenNumber();
    m_lines[k] =
        CLine(position, old.getEndPosition(), pen, pen, CElement::noIndex, old.getEndOpcodeIndex());
    const CLine firstHalf(old.getPosition(), position, pen, pen, old.getOpcodeIndex(),
                          CElement::noIndex);
    m_lines.insert(m_lines.begin() + static_cast<std::ptrdiff_t>(k), firstHalf);
    forgetPositions();
    return true;
}

void CSubPath::removeInnerPoints(std::size_t first, std::size_t last) {
    forgetPositions();
    CLine& before = m_lines[first - 1];
    before.setEndPoint(m_lines[last].getEndPosition(), m_lines[last].getEndOpcodeIndex());
    m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(first),
                  m_lines.begin() + static_cast<std::ptrdiff_t>(last + 1));
}

void CSubPath::removePoint(std::size_t k) {
    forgetPositions();
    if (k == 0) {
        m_lines.erase(m_lines.begin());
    } else if (k == m_lines.size()) {
        m_lines.pop_back();
    } else {
        removeInnerPoints(k, k);
    }
}

std::size_t CSubPath::findPoint(unsigned int opcodeIndex) const {
    const std::size_t k = findLineStartingAt(opcodeIndex);
    if (k < m_lines.size()) {
        return k;
    }
    if (!m_lines.empty() && getEndIndex() == opcodeIndex) {
        return m_lines.size();
    }
    return m_lines.size() + 1;
}

bool CSubPath::deletePoint(unsigned int opcodeIndex) {
    const std::size_t k = findPoint(opcodeIndex);
    if (k > m_lines.size()) {
        return false;
    }
    removePoint(k);
    updateIndexRange();
    return true;
}

bool CSubPath::deletePoints(std::set<unsigned int> opcodeIndices) {
    return CSubPathSelection::deletePoints(*this, opcodeIndices);
}

} // namespace LibStrokeset
