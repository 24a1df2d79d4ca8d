#include <LibStrokeset/CUnsupportedElement.h>

#include "stream/CSerializationState.h"

namespace LibStrokeset {

CUnsupportedElement::CUnsupportedElement(std::vector<unsigned short>& words,
                                         unsigned int opcodeIndex)
    : CElement(opcodeIndex), m_words(words) {}

const std::vector<unsigned short>& CUnsupportedElement::getBinaryElementData() const {
    return m_words;
}

void CUnsupportedElement::serialize(CSerializationState& state) {
    setOpcodeIndex(state.writeBinaryElementData(m_words, getOpcodeIndex()));
}

} // namespace LibStrokeset
