#pragma once

#include <vector>

#include <LibStrokeset/LibStrokesetExport.h>

namespace LibStrokeset {

/// The writer of one serialization or copy run: appends words to the caller's vector,
/// numbers the opcodes it writes from 0, drops redundant pen changes and, when given a map,
/// records at every old opcode index the new one. Its members are exported although its header
/// is not installed: the elements' public emitters take it as their argument.
class LIBSTROKESET_API CSerializationState {
public:
    CSerializationState(std::vector<unsigned short>& words, std::vector<unsigned int>* indexMap);

    /// Appends the opcode word and returns its new index. Throws "memory corruption" when
    /// oldIndex lies beyond the index map.
    unsigned int writeOpcode(unsigned short opcode, unsigned int oldIndex);
    /// Appends a pen change when pen is a real pen that is not in force yet.
    void writePenNumber(unsigned short pen);
    /// Appends the float's bit pattern, high word first.
    void writeFloat(float value);
    /// Appends a whole record verbatim; it counts as one opcode.
    unsigned int writeBinaryElementData(const std::vector<unsigned short>& words,
                                        unsigned int oldIndex);

    /// Number of opcodes written so far, which is also the next opcode's index.
    unsigned int getOpcodeCounter() const;

private:
    unsigned int numberOpcode(unsigned int oldIndex);

    unsigned int m_opcodeCounter;
    std::vector<unsigned short>& m_words;
    unsigned short m_currentPenNumber;
    std::vector<unsigned int>* m_indexMap;
};

} // namespace LibStrokeset
