#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

namespace LibStrokeset {

/// Base of every element: the opcode index under which it stood in the stream.
class LIBSTROKESET_API CElement {
public:
    /// Index of an element that has not been numbered yet.
    static constexpr unsigned int noIndex = 4294967295u;

    CElement(unsigned int opcodeIndex = noIndex);

    unsigned int getOpcodeIndex() const;
    void setOpcodeIndex(unsigned int opcodeIndex);

private:
    unsigned int m_opcodeIndex;
};

} // namespace LibStrokeset
