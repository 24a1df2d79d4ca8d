// Sub-path core: construction, queries, point edits, visiting and emission.

#include <LibStrokeset/CSubPath.h>

#include <algorithm>
#include <utility>

#include <LibStrokeset/IIteratorCallback.h>

#include "elements/Geometry.h"
#include "elements/SElementPositions.h"
#include "elements/OpcodeTypes.h"
#include "stream/CSerializationState.h"
#include "subpath/CSubPathSelection.h"

namespace LibStrokeset {

CSubPath::CSubPath() = default;

CSubPath::CSubPath(const CSubPath& other) : CCollection(), IFirstPosition(), ILastPosition() {
    m_lines.reserve(other.m_lines.size());
    for (CLine line : other.m_lines) {
        addLine(line);
    }
}

CSubPath& CSubPath::operator=(const CSubPath& other) {
    if (this != &other) {
        forgetPositions();
        CCollection::operator=(other);
        m_lines = other.m_lines;
    }
    return *this;
}

CSubPath::~CSubPath() = default;

// Whoever holds the lines may renumber them: the lookups forget what they knew.
std::vector<CLine>& CSubPath::getLines() {
    forgetPositions();
    return m_lines;
}
const std::vector<CLine>& CSubPath::getLines() const { return m_lines; }

CSubPath::iterator CSubPath::begin() {
    forgetPositions();
    return m_lines.begin();
}
CSubPath::iterator CSubPath::end() {
    forgetPositions();
    return m_lines.end();
}
CSubPath::const_iterator CSubPath::begin() const { return m_lines.begin(); }
CSubPath::const_iterator CSubPath::end() const { return m_lines.end(); }
CSubPath::const_iterator CSubPath::cbegin() const { return m_lines.cbegin(); }
CSubPath::const_iterator CSubPath::cend() const { return m_lines.cend(); }
CSubPath::const_reverse_iterator CSubPath::rbegin() const { return const_reverse_iterator(end()); }
CSubPath::const_reverse_iterator CSubPath::rend() const { return const_reverse_iterator(begin()); }
CSubPath::const_reverse_iterator CSubPath::crbegin() const { return rbegin(); }
CSubPath::const_reverse_iterator CSubPath::crend() const { return rend(); }

CSubPath::iterator CSubPath::erase(const_iterator position) {
    forgetPositions();
    const iterator next = m_lines.erase(position);
    updateIndexRange();
    return next;
}

CSubPath::iterator CSubPath::erase(const_iterator first, const_iterator last) {
    forgetPositions();
    const iterator next = m_lines.erase(first, last);
    updateIndexRange();
    return next;
}

void CSubPath::addLine(CLine& line) {
    forgetPositions();
    m_lines.push_back(line);
    addIndex(line.getOpcodeIndex());
    addIndex(line.getEndOpcodeIndex());
}

void CSubPath::appendLine(const Eigen::RowVector3f& position) {
    forgetPositions();
    if (m_lines.empty()) {
        return; // no point to extend from
    }
    const CLine& last = m_lines.back();
    const CLine line(last.getEndPosition(), position, last.getEndPenNumber(),
                     last.getEndPenNumber(), last.getEndOpcodeIndex(), CElement::noIndex);
    m_lines.push_back(line);
}

void CSubPath::prependLine(const Eigen::RowVector3f& position) {
    forgetPositions();
    if (m_lines.empty()) {
        return; // no point to extend from
    }
    const CLine& first = m_lines.front();
    const CLine line(position, first.getPosition(), first.getPenNumber(), first.getPenNumber(),
                     CElement::noIndex, first.getOpcodeIndex());
    m_lines.insert(m_lines.begin(), line);
}

void CSubPath::setEndPosition(const Eigen::RowVector3f& position) {
    if (m_lines.empty()) {
        return; // no point to extend from
    }
    m_lines.back().setEndPoint(position);
}

unsigned int CSubPath::getStartIndex() const {
    return m_lines.empty() ? CElement::noIndex : m_lines.front().getOpcodeIndex();
}

unsigned int CSubPath::getEndIndex() const {
    return m_lines.empty() ? CElement::noIndex : m_lines.back().getEndOpcodeIndex();
}

unsigned short CSubPath::getLastPenNumber() const {
    return m_lines.empty() ? CDrawingElement::noPen : m_lines.back().getEndPenNumber();
}

const Eigen::RowVector3f& CSubPath::getFirstPosition() const {
    return m_lines.empty() ? origin() : m_lines.front().getPosition();
}

const Eigen::RowVector3f& CSubPath::getLastPosition() const {
    return m_lines.empty() ? origin() : m_lines.back().getEndPosition();
}

unsigned int CSubPath::getPointsCount() const {
    return static_cast<unsigned int>(m_lines.size()) + 1;
}

bool CSubPath::isEmpty() const { return m_lines.empty(); }

bool CSubPath::isClosed() const {
    return m_lines.size() >= 3 && distance(getFirstPosition(), getLastPosition()) < zeroDistance;
}

std::size_t CSubPath::lastLine() const { return m_lines.size() - 1; }

std::size_t CSubPath::scanLinesStartingAt(unsigned int opcodeIndex, std::size_t from) const {
    for (std::size_t k = from; k < m_lines.size(); ++k) {
        if (m_lines[k].getOpcodeIndex() == opcodeIndex) {
            return k;
        }
    }
    return m_lines.size();
}

std::size_t CSubPath::findLineStartingAt(unsigned int opcodeIndex, std::size_t from) const {
    if (m_lines.size() < CFirstPositions::minimumCount) {
        return scanLinesStartingAt(opcodeIndex, from);
    }
    std::optional<CFirstPositions>& starts = positions().first;
    if (!starts) {
        starts.emplace(m_lines.size(),
                       [this](std::size_t k) { return m_lines[k].getOpcodeIndex(); });
    }
    const std::size_t first = starts->find(opcodeIndex);
    // The first occurrence lies before `from` (rare: a repeated index): scan on from there.
    return first >= from || first == m_lines.size() ? first
                                                    : scanLinesStartingAt(opcodeIndex, from);
}

void CSubPath::setStartPoint(std::size_t k, const Eigen::RowVector3f& position) {
    m_lines[k].setPoint(position, false);
    if (k > 0) {
        m_lines[k - 1].setEndPoint(position);
    }
}

EOpcodeType CSubPath::getOpcodeType(unsigned int opcodeIndex) const {
    const std::size_t k = findLineStartingAt(opcodeIndex);
    if (k == 0 && !m_lines.empty()) {
        return eSubPathStart;
    }
    if (k < m_lines.size()) {
        return eSubPathPoint;
    }
    return getEndIndex() == opcodeIndex && !m_lines.empty() ? eSubPathEnd : eNone;
}

bool CSubPath::getOpcodeTypes(std::vector<EOpcodeType>& types) const {
    if (!markOpcodeType(types, getStartIndex(), eSubPathStart)) {
        return false;
    }
    for (std::size_t k = 0; k + 1 < m_lines.size(); ++k) {
        if (!markOpcodeType(types, m_lines[k].getEndOpcodeIndex(), eSubPathPoint)) {
            return false;
        }
    }
    return markOpcodeType(types, getEndIndex(), eSubPathEnd);
}

const Eigen::RowVector3f& CSubPath::pointPosition(std::size_t k) const {
    return k < m_lines.size() ? m_lines[k].getPosition() : m_lines.back().getEndPosition();
}

void CSubPath::setPointPosition(std::size_t k, const Eigen::RowVector3f& position) {
    if (k < m_lines.size()) {
        setStartPoint(k, position);
    } else {
        m_lines.back().setEndPoint(position);
    }
}

bool CSubPath::getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) const {
    const std::size_t k = findPoint(opcodeIndex);
    if (k > m_lines.size()) {
        return false;
    }
    position = pointPosition(k);
    return true;
}

bool CSubPath::getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber) const {
    const std::size_t k = findPoint(opcodeIndex);
    if (k > m_lines.size()) {
        return false;
    }
    penNumber = k < m_lines.size() ? m_lines[k].getPenNumber() : getLastPenNumber();
    return true;
}

bool CSubPath::setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) {
    const std::size_t k = findPoint(opcodeIndex);
    if (k > m_lines.size()) {
        return false;
    }
    setPointPosition(k, position);
    return true;
}

bool CSubPath::setPenNumber(unsigned int opcodeIndex, unsigned short penNumber) {
    if (m_lines.empty()) {
        return false;
    }
    if (m_lines.front().getOpcodeIndex() == opcodeIndex) {
        m_lines.front().setPenNumber(penNumber);
        return true;
    }
    if (m_lines.back().getEndOpcodeIndex() == opcodeIndex) {
        m_lines.back().setEndPenNumber(penNumber);
        return true;
    }
    // An inner point: both of its copies carry the pen.
    const std::size_t k = findInnerPoint(opcodeIndex);
    if (k >= m_lines.size()) {
        return false;
    }
    if (m_lines[k - 1].getEndOpcodeIndex() == opcodeIndex) {
        m_lines[k - 1].setEndPenNumber(penNumber);
    }
    if (m_lines[k].getOpcodeIndex() == opcodeIndex) {
        m_lines[k].setPenNumber(penNumber);
    }
    return true;
}

std::size_t CSubPath::findInnerPoint(unsigned int opcodeIndex) const {
    const std::size_t n = m_lines.size();
    if (n < CFirstPositions::minimumCount) {
        for (std::size_t k = 1; k < n; ++k) {
            if (m_lines[k - 1].getEndOpcodeIndex() == opcodeIndex ||
                m_lines[k].getOpcodeIndex() == opcodeIndex) {
                return k;
            }
        }
        return n;
    }
    // The first end copy found may be the last line's, which has no line after it.
    const std::size_t ending = findLineEndingAt(opcodeIndex);
    const std::size_t afterEnd = ending + 1 < n ? ending + 1 : n;
    return std::min(afterEnd, findLineStartingAt(opcodeIndex, 1));
}

std::size_t CSubPath::findLineEndingAt(unsigned int opcodeIndex) const {
    const std::size_t n = m_lines.size();
    if (n < CFirstPositions::minimumCount) {
        for (std::size_t k = 0; k < n; ++k) {
            if (m_lines[k].getEndOpcodeIndex() == opcodeIndex) {
                return k;
            }
        }
        return n;
    }
    std::optional<CFirstPositions>& ends = positions().ends;
    if (!ends) {
        ends.emplace(n, [this](std::size_t k) { return m_lines[k].getEndOpcodeIndex(); });
    }
    return ends->find(opcodeIndex);
}

bool CSubPath::changePen(const std::set<unsigned int>& opcodeIndices, unsigned short penNumber) {
    return CSubPathSelection::changePen(*this, opcodeIndices, penNumber);
}

bool CSubPath::transform(Eigen::Matrix<float, 3, 4>& matrix) {
    for (std::size_t k = 0; k < m_lines.size(); ++k) {
        setStartPoint(k, applyAffine(matrix, m_lines[k].getPosition()));
    }
    if (!m_lines.empty()) {
        m_lines.back().setEndPoint(applyAffine(matrix, m_lines.back().getEndPosition()));
    }
    return true;
}

bool CSubPath::transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix) {
    const std::size_t k = findPoint(opcodeIndex);
    if (k > m_lines.size()) {
        return false;
    }
    setPointPosition(k, applyAffine(matrix, pointPosition(k)));
    return true;
}

bool CSubPath::transformPoints(std::set<unsigned int> opcodeIndices,
                               Eigen::Matrix<float, 3, 4>& matrix) {
    return CSubPathSelection::transformPoints(*this, std::move(opcodeIndices), matrix);
}

void CSubPath::iterate(IIteratorCallback& callback) {
    for (std::size_t k = 0; k < m_lines.size(); ++k) {
        callback.onLine(m_lines[k].getPosition(), m_lines[k].getEndPosition(), k == 0,
                        k == lastLine());
    }
}

void CSubPath::serialize(CSerializationState& state) {
    forgetPositions();
    resetIndexRange();
    if (m_lines.empty()) {
        return;
    }
    m_lines.front().serializeStartPointAsMoveTo(state);
    addIndex(m_lines.front().getOpcodeIndex());
    for (std::size_t k = 1; k < m_lines.size(); ++k) {
        m_lines[k].serializeStartPointAsLineTo(state);
        m_lines[k - 1].setEndOpcodeIndex(m_lines[k].getOpcodeIndex());
        addIndex(m_lines[k].getOpcodeIndex());
    }
    m_lines.back().serializeEndPointAsLineTo(state);
    addIndex(m_lines.back().getEndOpcodeIndex());
}

void CSubPath::copyAll(CSerializationState& state) const {
    if (m_lines.empty()) {
        return;
    }
    m_lines.front().copyMoveTo(state);
    for (const CLine& line : m_lines) {
        line.copyLineTo(state);
    }
}

bool CSubPath::copy(const std::set<unsigned int>& opcodeIndices, CSerializationState& state) const {
    // One selected point alone makes no polyline.
    if (opcodeIndices.size() < 2) {
        return true;
    }
    std::size_t first = 0;
    while (first < m_lines.size() && opcodeIndices.count(m_lines[first].getOpcodeIndex()) == 0) {
        ++first;
    }
    if (first == m_lines.size()) {
        return true;
    }
    m_lines[first].copyMoveTo(state);
    for (std::size_t j = first; j < m_lines.size(); ++j) {
        if (opcodeIndices.count(m_lines[j].getEndOpcodeIndex()) != 0) {
            m_lines[j].copyLineTo(state);
        }
    }
    return true;
}

bool CSubPath::isCompleteCollection(const std::set<unsigned int>& opcodeIndices) {
    return coversIndices(opcodeIndices, getStartIndex(), getEndIndex());
}

void CSubPath::updateIndexRange() {
    forgetPositions();
    if (m_lines.empty()) {
        return;
    }
    resetIndexRange();
    const unsigned int start = m_lines.front().getOpcodeIndex();
    addIndex(start);
    // The end copies count on from the start; the start copies keep the old numbering so
    // that the host's indices still find the points until the next serialization.
    for (std::size_t k = 0; k < m_lines.size(); ++k) {
        m_lines[k].setEndOpcodeIndex(start + static_cast<unsigned int>(k) + 1u);
    }
    addIndex(m_lines.back().getEndOpcodeIndex());
}

} // namespace LibStrokeset
