#include <LibStrokeset/CElement.h>

namespace LibStrokeset {

CElement::CElement(unsigned int opcodeIndex) : m_opcodeIndex(opcodeIndex) {}

unsigned int CElement::getOpcodeIndex() const { return m_opcodeIndex; }

void CElement::setOpcodeIndex(unsigned int opcodeIndex) { m_opcodeIndex = opcodeIndex; }

} // namespace LibStrokeset
