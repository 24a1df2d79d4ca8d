#include <LibStrokeset/CCollection.h>

#include <LibStrokeset/CDrawingElement.h>
#include <LibStrokeset/CElement.h>

namespace LibStrokeset {

CCollection::CCollection() : m_minOpcodeIndex(CElement::noIndex), m_maxOpcodeIndex(0) {}

CCollection::~CCollection() = default;

void CCollection::addIndex(unsigned int opcodeIndex) {
    if (opcodeIndex == CElement::noIndex) {
        return;
    }
    if (m_minOpcodeIndex > opcodeIndex) {
        m_minOpcodeIndex = opcodeIndex;
    }
    if (m_maxOpcodeIndex < opcodeIndex) {
        m_maxOpcodeIndex = opcodeIndex;
    }
}

void CCollection::resetIndexRange() {
    m_minOpcodeIndex = CElement::noIndex;
    m_maxOpcodeIndex = 0;
}

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
