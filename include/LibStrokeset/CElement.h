#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

namespace LibStrokeset {

/// Base of every element: the opcode index under which it stood in the stream when the
/// document was last loaded or serialized. That index is how the host addresses it.
class LIBSTROKESET_API CElement {
public:
    /// Index of an element that has not been numbered yet.
    static constexpr unsigned int noIndex = 4294967295u;

    /// An element with this index; by default it has none.
    CElement(unsigned int opcodeIndex = noIndex);

    /// The opcode index; 4294967295 when the element has not been numbered yet.
    unsigned int getOpcodeIndex() const;
    /// Replaces the opcode index.
    void setOpcodeIndex(unsigned int opcodeIndex);

private:
    unsigned int m_opcodeIndex;
};

} // namespace LibStrokeset
