#include <LibStrokeset/CUnsupportedElementCollection.h>

#include <utility>

#include <LibStrokeset/IIteratorCallback.h>

#include "elements/SElementPositions.h"
#include "elements/NamedElementRemoval.h"
#include "elements/OpcodeTypes.h"
#include "stream/CSerializationState.h"

namespace LibStrokeset {

CUnsupportedElementCollection::CUnsupportedElementCollection() = default;
CUnsupportedElementCollection::CUnsupportedElementCollection(
    const CUnsupportedElementCollection& other)
    : CCollection(other), m_elements(other.m_elements) {}
CUnsupportedElementCollection::CUnsupportedElementCollection(
    CUnsupportedElementCollection&& other) noexcept
    : CCollection(other), m_elements(std::move(other.m_elements)) {
    other.forgetPositions();
}
CUnsupportedElementCollection&
CUnsupportedElementCollection::operator=(const CUnsupportedElementCollection& other) {
    if (this != &other) {
        forgetPositions();
        CCollection::operator=(other);
        m_elements = other.m_elements;
    }
    return *this;
}
CUnsupportedElementCollection&
CUnsupportedElementCollection::operator=(CUnsupportedElementCollection&& other) noexcept {
    forgetPositions();
    other.forgetPositions();
    CCollection::operator=(other);
    m_elements = std::move(other.m_elements);
    return *this;
}
CUnsupportedElementCollection::~CUnsupportedElementCollection() = default;

std::size_t CUnsupportedElementCollection::firstRecord(unsigned int opcodeIndex) const {
    return firstWithIndex(m_elements, positions().first, opcodeIndex);
}

void CUnsupportedElementCollection::addElement(CUnsupportedElement& element) {
    forgetPositions();
    m_elements.push_back(element);
    addIndex(element.getOpcodeIndex());
}

const std::vector<CUnsupportedElement>& CUnsupportedElementCollection::getElements() const {
    return m_elements;
}

void CUnsupportedElementCollection::serialize(CSerializationState& state) {
    forgetPositions();
    resetIndexRange();
    for (CUnsupportedElement& element : m_elements) {
        element.serialize(state);
        addIndex(element.getOpcodeIndex());
    }
}

void CUnsupportedElementCollection::iterate(IIteratorCallback& callback) {
    for (const CUnsupportedElement& element : m_elements) {
        callback.onUnsupportedElement(element.getBinaryElementData());
    }
}

// Records have no positions and no pens.
bool CUnsupportedElementCollection::transformPoint(unsigned int, Eigen::Matrix<float, 3, 4>&) {
    return false;
}
bool CUnsupportedElementCollection::transformPoints(std::set<unsigned int>,
                                                    Eigen::Matrix<float, 3, 4>&) {
    return false;
}
bool CUnsupportedElementCollection::transform(Eigen::Matrix<float, 3, 4>&) { return false; }
bool CUnsupportedElementCollection::changePen(const std::set<unsigned int>&, unsigned short) {
    return false;
}
bool CUnsupportedElementCollection::setPenNumber(unsigned int, unsigned short) { return false; }
bool CUnsupportedElementCollection::getPosition(unsigned int, Eigen::RowVector3f&) const {
    return false;
}
bool CUnsupportedElementCollection::getPenNumber(unsigned int, unsigned short&) const {
    return false;
}
bool CUnsupportedElementCollection::setPosition(unsigned int, Eigen::RowVector3f&) { return false; }

bool CUnsupportedElementCollection::deletePoint(unsigned int opcodeIndex) {
    const std::size_t k = firstRecord(opcodeIndex);
    if (k == m_elements.size()) {
        return false;
    }
    m_elements.erase(m_elements.begin() + static_cast<std::ptrdiff_t>(k));
    forgetPositions();
    return true;
}

bool CUnsupportedElementCollection::deletePoints(std::set<unsigned int> opcodeIndices) {
    forgetPositions();
    eraseNamed(m_elements, opcodeIndices, false);
    return opcodeIndices.empty();
}

unsigned int CUnsupportedElementCollection::getStartIndex() const {
    return m_elements.empty() ? CElement::noIndex : m_elements.front().getOpcodeIndex();
}

unsigned int CUnsupportedElementCollection::getEndIndex() const {
    return m_elements.empty() ? CElement::noIndex : m_elements.back().getOpcodeIndex();
}

bool CUnsupportedElementCollection::isCompleteCollection(
    const std::set<unsigned int>& opcodeIndices) {
    return coversIndices(opcodeIndices, getStartIndex(), getEndIndex());
}

void CUnsupportedElementCollection::copyAll(CSerializationState& state) const {
    for (const CUnsupportedElement& element : m_elements) {
        state.writeBinaryElementData(element.getBinaryElementData(), CElement::noIndex);
    }
}

bool CUnsupportedElementCollection::copy(const std::set<unsigned int>& opcodeIndices,
                                         CSerializationState& state) const {
    for (const CUnsupportedElement& element : m_elements) {
        if (opcodeIndices.count(element.getOpcodeIndex()) != 0) {
            state.writeBinaryElementData(element.getBinaryElementData(), CElement::noIndex);
        }
    }
    return true;
}

bool CUnsupportedElementCollection::isEmpty() const { return m_elements.empty(); }

EOpcodeType CUnsupportedElementCollection::getOpcodeType(unsigned int opcodeIndex) const {
    return firstRecord(opcodeIndex) < m_elements.size() ? eUnsupported : eNone;
}

unsigned int CUnsupportedElementCollection::getUnsupportedOpcodeCount() const {
    return getPointsCount();
}

unsigned int CUnsupportedElementCollection::getPointsCount() const {
    return static_cast<unsigned int>(m_elements.size());
}

bool CUnsupportedElementCollection::getOpcodeTypes(std::vector<EOpcodeType>& types) const {
    for (const CUnsupportedElement& element : m_elements) {
        if (!markOpcodeType(types, element.getOpcodeIndex(), eUnsupported)) {
            return false;
        }
    }
    return true;
}

} // namespace LibStrokeset
