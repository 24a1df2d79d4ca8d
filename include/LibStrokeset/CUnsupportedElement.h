#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <vector>

#include <LibStrokeset/CElement.h>

namespace LibStrokeset {

class CSerializationState;

/// A record the library does not interpret; its words are carried through verbatim.
/// Final: it has a virtual operation but no virtual destructor, and is never a base.
class LIBSTROKESET_API CUnsupportedElement final : public CElement {
public:
    /// A record of these words (copied: the argument stays as it is) under the opcode index.
    CUnsupportedElement(std::vector<unsigned short>& words, unsigned int opcodeIndex);

    /// The whole record, opcode word included, exactly as it stood in the stream.
    const std::vector<unsigned short>& getBinaryElementData() const;

    /// Writes the words unchanged and takes the new index the writer gives the record.
    virtual void serialize(CSerializationState& state);

private:
    std::vector<unsigned short> m_words;
};

} // namespace LibStrokeset
