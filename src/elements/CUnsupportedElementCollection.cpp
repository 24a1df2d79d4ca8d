#include <LibStrokeset/CUnsupportedElementCollection.h>

#include <utility>

#include <LibStrokeset/IIteratorCallback.h>

#include "elements/NamedElementRemoval.h"
#include "elements/OpcodeTypes.h"
#include "stream/CSerializationState.h"

namespace LibStrokeset {

CUnsupportedElementCollection::CUnsupportedElementCollection() = default;
CUnsupportedElementCollection::CUnsupportedElementCollection(
    const CUnsupportedElementCollection& other) = default;
CUnsupportedElementCollection::CUnsupportedElementCollection(
    CUnsupportedElementCollection&& other) noexcept
    : CCollection(other), m_elements(std::move(other.m_elements)) {}
CUnsupportedElementCollection&
CUnsupportedElementCollection::operator=(const CUnsupportedElementCollection& other) = default;
CUnsupportedElementCollection&
CUnsupportedElementCollection::operator=(CUnsupportedElementCollection&& other) noexcept {
    CCollection::operator=(other);
    m_elements = std::move(other.m_elements);
    return *this;
}
CUnsupportedElementCollection::~CUnsupportedElementCollection() = default;

void CUnsupportedElementCollection::addElement(CUnsupportedElement& element) {
    m_elements.push_back(element);
    addIndex(element.getOpcodeIndex());
}

const std::vector<CUnsupportedElement>& CUnsupportedElementCollection::getElements() const {
    return m_elements;
}

void CUnsupportedElementCollection::serialize(CSerializationState& state) {
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
    for (auto it = m_elements.begin(); it != m_elements.end(); ++it) {
        if (it->getOpcodeIndex() == opcodeIndex) {
            m_elements.erase(it);
            return true;
        }
    }
    return false;
}

bool CUnsupportedElementCollection::deletePoints(std::set<unsigned int> opcodeIndices) {
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
    for (const CUnsupportedElement& element : m_elements) {
        if (element.getOpcodeIndex() == opcodeIndex) {
            return eUnsupported;
        }
    }
    return eNone;
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
