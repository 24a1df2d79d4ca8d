#include <LibStrokeset/CDotCollection.h>

#include <algorithm>
#include <utility>

#include <LibStrokeset/IIteratorCallback.h>

#include "elements/SElementPositions.h"
#include "elements/Geometry.h"
#include "elements/NamedElementRemoval.h"
#include "elements/OpcodeTypes.h"
#include "stream/CSerializationState.h"

namespace LibStrokeset {

CDotCollection::CDotCollection() = default;
CDotCollection::CDotCollection(const CDotCollection& other)
    : CCollection(other), IFirstPosition(), ILastPosition(), m_dots(other.m_dots) {}
CDotCollection::CDotCollection(CDotCollection&& other) noexcept
    : CCollection(other), m_dots(std::move(other.m_dots)) {
    other.forgetPositions();
}
CDotCollection& CDotCollection::operator=(const CDotCollection& other) {
    if (this != &other) {
        forgetPositions();
        CCollection::operator=(other);
        m_dots = other.m_dots;
    }
    return *this;
}
CDotCollection& CDotCollection::operator=(CDotCollection&& other) noexcept {
    forgetPositions();
    other.forgetPositions();
    CCollection::operator=(other);
    m_dots = std::move(other.m_dots);
    return *this;
}
CDotCollection::~CDotCollection() = default;

std::size_t CDotCollection::firstDot(unsigned int opcodeIndex) const {
    return firstWithIndex(m_dots, positions().first, opcodeIndex);
}

bool CDotCollection::fewAmongMany(std::size_t indexCount) const {
    if (m_dots.size() < CFirstPositions::minimumCount || indexCount * 16 >= m_dots.size()) {
        return false;
    }
    firstDot(CElement::noIndex); // builds the table
    return true;
}

CDotCollection::iterator CDotCollection::findDot(unsigned int opcodeIndex) {
    return m_dots.begin() + static_cast<std::ptrdiff_t>(firstDot(opcodeIndex));
}

CDotCollection::const_iterator CDotCollection::findDot(unsigned int opcodeIndex) const {
    return m_dots.begin() + static_cast<std::ptrdiff_t>(firstDot(opcodeIndex));
}

void CDotCollection::addDot(CDot& dot) {
    forgetPositions();
    m_dots.push_back(dot);
    addIndex(dot.getOpcodeIndex());
}

bool CDotCollection::insertDot(unsigned int opcodeIndex, Eigen::RowVector3f& position) {
    if (!m_dots.empty() && m_dots.back().getOpcodeIndex() == opcodeIndex) {
        CDot dot(position, m_dots.back().getPenNumber(), CElement::noIndex);
        addDot(dot);
        return true;
    }
    const auto found = findDot(opcodeIndex);
    if (found == m_dots.end()) {
        return false;
    }
    const CDot dot(position, found->getPenNumber(), CElement::noIndex);
    m_dots.insert(found + 1, dot);
    forgetPositions();
    return true;
}

bool CDotCollection::removeAndGetParams(unsigned int opcodeIndex, Eigen::RowVector3f& position,
                                        unsigned short& penNumber) {
    if (opcodeIndex == CElement::noIndex) {
        return false;
    }
    const auto found = findDot(opcodeIndex);
    if (found == m_dots.end()) {
        return false;
    }
    position = found->getPosition();
    penNumber = found->getPenNumber();
    m_dots.erase(found);
    forgetPositions();
    return true;
}

bool CDotCollection::removeAndGetParamsLast(Eigen::RowVector3f& position,
                                            unsigned short& penNumber) {
    if (m_dots.empty()) {
        return false;
    }
    position = m_dots.back().getPosition();
    penNumber = m_dots.back().getPenNumber();
    m_dots.pop_back();
    forgetPositions();
    return true;
}

// Whoever holds the dots may renumber them: the lookups forget what they knew.
CDotCollection::iterator CDotCollection::begin() {
    forgetPositions();
    return m_dots.begin();
}
CDotCollection::iterator CDotCollection::end() {
    forgetPositions();
    return m_dots.end();
}
CDotCollection::const_iterator CDotCollection::begin() const { return m_dots.begin(); }
CDotCollection::const_iterator CDotCollection::end() const { return m_dots.end(); }
CDotCollection::const_iterator CDotCollection::cbegin() const { return m_dots.cbegin(); }
CDotCollection::const_iterator CDotCollection::cend() const { return m_dots.cend(); }
CDotCollection::const_reverse_iterator CDotCollection::rbegin() const { return m_dots.crbegin(); }
CDotCollection::const_reverse_iterator CDotCollection::rend() const { return m_dots.crend(); }
CDotCollection::const_reverse_iterator CDotCollection::crbegin() const { return m_dots.crbegin(); }
CDotCollection::const_reverse_iterator CDotCollection::crend() const { return m_dots.crend(); }

void CDotCollection::serialize(CSerializationState& state) {
    forgetPositions();
    resetIndexRange();
    for (CDot& dot : m_dots) {
        dot.serialize(state);
        addIndex(dot.getOpcodeIndex());
    }
}

void CDotCollection::iterate(IIteratorCallback& callback) {
    for (const CDot& dot : m_dots) {
        callback.onDot(dot.getPosition());
    }
}

bool CDotCollection::transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix) {
    const auto found = findDot(opcodeIndex);
    if (found == m_dots.end()) {
        return false;
    }
    found->setPoint(applyAffine(matrix, found->getPosition()), false);
    return true;
}

bool CDotCollection::transformPoints(std::set<unsigned int> opcodeIndices,
                                     Eigen::Matrix<float, 3, 4>& matrix) {
    if (fewAmongMany(opcodeIndices.size())) {
        // Each index maps the first dot that carries it, as the scan below does.
        for (auto it = opcodeIndices.begin(); it != opcodeIndices.end();) {
            const std::size_t k = firstDot(*it);
            if (k < m_dots.size()) {
                m_dots[k].setPoint(applyAffine(matrix, m_dots[k].getPosition()), false);
                it = opcodeIndices.erase(it);
            } else {
                ++it;
            }
        }
        return opcodeIndices.empty();
    }
    for (CDot& dot : m_dots) {
        if (opcodeIndices.empty()) {
            break;
        }
        if (opcodeIndices.erase(dot.getOpcodeIndex()) != 0) {
            dot.setPoint(applyAffine(matrix, dot.getPosition()), false);
        }
    }
    return opcodeIndices.empty();
}

bool CDotCollection::transform(Eigen::Matrix<float, 3, 4>& matrix) {
    for (CDot& dot : m_dots) {
        dot.setPoint(applyAffine(matrix, dot.getPosition()), false);
    }
    return true;
}

bool CDotCollection::deletePoint(unsigned int opcodeIndex) {
    const auto found = findDot(opcodeIndex);
    if (found == m_dots.end()) {
        return false;
    }
    m_dots.erase(found);
    forgetPositions();
    return true;
}

bool CDotCollection::deletePoints(std::set<unsigned int> opcodeIndices) {
    // Scanned from the back: of two dots with one index, the later one goes.
    forgetPositions();
    eraseNamed(m_dots, opcodeIndices, true);
    return opcodeIndices.empty();
}

bool CDotCollection::changePen(const std::set<unsigned int>& opcodeIndices,
                               unsigned short penNumber) {
    // The scan below changes every dot of an index until as many dots as indices changed;
    // searching is the same only where no index repeats.
    if (fewAmongMany(opcodeIndices.size()) && !positions().first->repeatsAnIndex()) {
        std::size_t changed = 0;
        for (const unsigned int index : opcodeIndices) {
            const std::size_t k = firstDot(index);
            if (k < m_dots.size()) {
                m_dots[k].setPenNumber(penNumber);
                ++changed;
            }
        }
        return changed == opcodeIndices.size() && changed != 0;
    }
    std::size_t changed = 0;
    for (CDot& dot : m_dots) {
        if (opcodeIndices.count(dot.getOpcodeIndex()) != 0) {
            dot.setPenNumber(penNumber);
            if (++changed == opcodeIndices.size()) {
                return true;
            }
        }
    }
    return false;
}

bool CDotCollection::setPenNumber(unsigned int opcodeIndex, unsigned short penNumber) {
    const auto found = findDot(opcodeIndex);
    if (found == m_dots.end()) {
        return false;
    }
    found->setPenNumber(penNumber);
    return true;
}

unsigned int CDotCollection::getStartIndex() const {
    return m_dots.empty() ? CElement::noIndex : m_dots.front().getOpcodeIndex();
}

unsigned int CDotCollection::getEndIndex() const {
    return m_dots.empty() ? CElement::noIndex : m_dots.back().getOpcodeIndex();
}

unsigned short CDotCollection::getLastPenNumber() const {
    return m_dots.empty() ? CDrawingElement::noPen : m_dots.back().getPenNumber();
}

bool CDotCollection::isCompleteCollection(const std::set<unsigned int>& opcodeIndices) {
    return coversIndices(opcodeIndices, getStartIndex(), getEndIndex());
}

void CDotCollection::copyAll(CSerializationState& state) const {
    for (const CDot& dot : m_dots) {
        dot.copy(state);
    }
}

bool CDotCollection::copy(const std::set<unsigned int>& opcodeIndices,
                          CSerializationState& state) const {
    std::size_t copied = 0;
    for (const CDot& dot : m_dots) {
        if (opcodeIndices.count(dot.getOpcodeIndex()) != 0) {
            dot.copy(state);
            ++copied;
        }
    }
    return copied == opcodeIndices.size();
}

bool CDotCollection::isEmpty() const { return m_dots.empty(); }

bool CDotCollection::getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) const {
    const auto found = findDot(opcodeIndex);
    if (found == m_dots.end()) {
        return false;
    }
    position = found->getPosition();
    return true;
}

bool CDotCollection::getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber) const {
    const auto found = findDot(opcodeIndex);
    if (found == m_dots.end()) {
        return false;
    }
    penNumber = found->getPenNumber();
    return true;
}

EOpcodeType CDotCollection::getOpcodeType(unsigned int opcodeIndex) const {
    return findDot(opcodeIndex) == m_dots.end() ? eNone : eDot;
}

unsigned int CDotCollection::getPointsCount() const {
    return static_cast<unsigned int>(m_dots.size());
}

bool CDotCollection::getOpcodeTypes(std::vector<EOpcodeType>& types) const {
    for (const CDot& dot : m_dots) {
        if (!markOpcodeType(types, dot.getOpcodeIndex(), eDot)) {
            return false;
        }
    }
    return true;
}

bool CDotCollection::setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) {
    const auto found = findDot(opcodeIndex);
    if (found == m_dots.end()) {
        return false;
    }
    found->setPoint(position, false);
    return true;
}

const Eigen::RowVector3f& CDotCollection::getFirstPosition() const {
    return m_dots.empty() ? origin() : m_dots.front().getPosition();
}

const Eigen::RowVector3f& CDotCollection::getLastPosition() const {
    return m_dots.empty() ? origin() : m_dots.back().getPosition();
}

} // namespace LibStrokeset
