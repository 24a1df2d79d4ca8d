// Copying a selection out as a new stream.

#include <cstdio>

#include <LibStrokeset/CStrokeset.h>

#include "stream/CSerializationState.h"

namespace LibStrokeset {

bool CStrokeset::copy(const std::vector<unsigned int>& opcodeIndices,
                      std::vector<unsigned short>& words) {
    std::map<CCollection*, std::set<unsigned int>> groups;
    if (!mapIndicesToCollections(opcodeIndices, groups)) {
        return false;
    }
    CSerializationState state(words, nullptr);
    bool copied = true;
    for (const auto& [collection, indices] : groups) {
        if (collection->isCompleteCollection(indices)) {
            collection->copyAll(state);
        } else if (!collection->copy(indices, state)) {
            copied = false;
        }
    }
    if (state.getOpcodeCounter() != opcodeIndices.size()) {
        std::printf("numOfOpcodes=%d; opcodeIndices=%zu\n",
                    static_cast<int>(state.getOpcodeCounter()), opcodeIndices.size());
    }
    return copied;
}

} // namespace LibStrokeset
