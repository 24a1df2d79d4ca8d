#include <LibStrokeset/CCollection.h>

#include <LibStrokeset/CDrawingElement.h>
#include <LibStrokeset/CElement.h>

#include "elements/CRangeChangeCounter.h"
#include "elements/SElementPositions.h"

namespace LibStrokeset {

CCollection::CCollection()
    : m_minOpcodeIndex(CElement::noIndex), m_maxOpcodeIndex(0), m_rangeChanges(nullptr) {}

CCollection::CCollection(const CCollection& other)
    : m_minOpcodeIndex(other.m_minOpcodeIndex), m_maxOpcodeIndex(other.m_maxOpcodeIndex),
      m_rangeChanges(nullptr) {}

CCollection& CCollection::operator=(const CCollection& other) {
    setRange(other.m_minOpcodeIndex, other.m_maxOpcodeIndex);
    return *this;
}

SElementPositions& CCollection::positions() const {
    if (!m_positions) {
        m_positions = std::make_unique<SElementPositions>();
    }
    return *m_positions;
}

void CCollection::forgetPositions() { m_positions.reset(); }

CCollection::~CCollection() {
    if (m_rangeChanges != nullptr) {
        m_rangeChanges->letGo();
    }
}

void CCollection::setRange(unsigned int minOpcodeIndex, unsigned int maxOpcodeIndex) {
    if (minOpcodeIndex == m_minOpcodeIndex && maxOpcodeIndex == m_maxOpcodeIndex) {
        return;
    }
    m_minOpcodeIndex = minOpcodeIndex;
    m_maxOpcodeIndex = maxOpcodeIndex;
    if (m_rangeChanges != nullptr) {
        m_rangeChanges->count();
    }
}

void CCollection::addIndex(unsigned int opcodeIndex) {
    // Called for every element loaded or written: kept to the tests it always made.
    if (opcodeIndex == CElement::noIndex) {
        return;
    }
    bool widened = false;
    if (m_minOpcodeIndex > opcodeIndex) {
        m_minOpcodeIndex = opcodeIndex;
        widened = true;
    }
    if (m_maxOpcodeIndex < opcodeIndex) {
        m_maxOpcodeIndex = opcodeIndex;
        widened = true;
    }
    if (widened && m_rangeChanges != nullptr) {
        m_rangeChanges->count();
    }
}

void CCollection::resetIndexRange() { setRange(CElement::noIndex, 0); }

unsigned short CCollection::getLastPenNumber() const { return CDrawingElement::noPen; }

unsigned int CCollection::getUnsupportedOpcodeCount() const { return 0; }

unsigned int CCollection::getMinOpcodeIndex() const { return m_minOpcodeIndex; }

unsigned int CCollection::getMaxOpcodeIndex() const { return m_maxOpcodeIndex; }

bool CCollection::coversIndices(const std::set<unsigned int>& opcodeIndices,
                                unsigned int firstIndex, unsigned int lastIndex) const {
    if (opcodeIndices.size() != getPointsCount() || opcodeIndices.empty()) {
        return false;
    }
    return *opcodeIndices.begin() == firstIndex && *opcodeIndices.rbegin() == lastIndex;
}

} // namespace LibStrokeset
