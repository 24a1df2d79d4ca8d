#pragma once

#include <vector>

#include <LibStrokeset/CElement.h>
#include <LibStrokeset/EOpcodeType.h>

namespace LibStrokeset {

/// Writes one element's type at its index, as every collection's getOpcodeTypes does: false
/// for an element without an index, and nothing written at or beyond the vector's end.
inline bool markOpcodeType(std::vector<EOpcodeType>& types, unsigned int index, EOpcodeType type) {
    if (index == CElement::noIndex) {
        return false;
    }
    if (index < types.size()) {
        types[index] = type;
    }
    return true;
}

} // namespace LibStrokeset
