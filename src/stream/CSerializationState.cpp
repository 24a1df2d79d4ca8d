#include "stream/CSerializationState.h"

#include <cstdint>
#include <cstring>

#include <LibStrokeset/CDrawingElement.h>
#include <LibStrokeset/CElement.h>

#include "stream/Opcodes.h"

namespace LibStrokeset {

CSerializationState::CSerializationState(std::vector<unsigned short>& words,
                                         std::vector<unsigned int>* indexMap)
    : m_opcodeCounter(0), m_words(words), m_currentPenNumber(0), m_indexMap(indexMap) {}

unsigned int CSerializationState::writeOpcode(unsigned short opcode, unsigned int oldIndex) {
    m_words.push_back(opcode);
    return numberOpcode(oldIndex);
}

void CSerializationState::writePenNumber(unsigned short pen) {
    if (pen == CDrawingElement::noPen || pen == m_currentPenNumber) {
        return;
    }
    m_words.push_back(Opcode::penChange);
    m_words.push_back(pen);
    m_currentPenNumber = pen;
}

void CSerializationState::writeFloat(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    m_words.push_back(static_cast<unsigned short>(bits >> 16));
    m_words.push_back(static_cast<unsigned short>(bits & 0xFFFFu));
}

unsigned int CSerializationState::writeBinaryElementData(const std::vector<unsigned short>& words,
                                                         unsigned int oldIndex) {
    m_words.insert(m_words.end(), words.begin(), words.end());
    return numberOpcode(oldIndex);
}

unsigned int CSerializationState::getOpcodeCounter() const { return m_opcodeCounter; }

unsigned int CSerializationState::numberOpcode(unsigned int oldIndex) {
    if (m_indexMap != nullptr && oldIndex != CElement::noIndex) {
        if (oldIndex >= m_indexMap->size()) {
            // An element holds an index the document never handed out.
            throw "memory corruption";
        }
        (*m_indexMap)[oldIndex] = m_opcodeCounter;
    }
    return m_opcodeCounter++;
}

} // namespace LibStrokeset
