#pragma once

#include <vector>

#include <LibStrokeset/CElement.h>

namespace LibStrokeset {

class CSerializationState;

/// A record the library does not interpret; its words are carried through verbatim.
class CUnsupportedElement : public CElement {
public:
    CUnsupportedElement(std::vector<unsigned short>& words, unsigned int opcodeIndex);

    const std::vector<unsigned short>& getBinaryElementData() const;

    /// Writes the words unchanged and takes the new index the writer gives the record.
    virtual void serialize(CSerializationState& state);

private:
    std::vector<unsigned short> m_words;
};

} // namespace LibStrokeset
