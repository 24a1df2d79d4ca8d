#pragma once

// The document's multi-index commands as they stood with the walk per index, the sub-paths
// using their one-at-a-time forms: what the one-pass code is compared with.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include <LibStrokeset/LibStrokeset.h>

#include "document/CIndexGrouping.h"
#include "stream/CSerializationState.h"
#include "subpath/CSubPathSelection.h"

namespace test {

using LibStrokeset::CIndexGrouping;
using LibStrokeset::CLine;
using LibStrokeset::CSerializationState;
using LibStrokeset::CStrokeset;
using LibStrokeset::CSubPath;
using LibStrokeset::CSubPathSelection;
using Groups = CIndexGrouping::Groups;
using Matrix = Eigen::Matrix<float, 3, 4>;

/// Groups by the walk, then asks every group in key order; false when grouping fails or
/// any group answers false.
template <class PerGroup>
bool byWalk(CStrokeset& document, const std::vector<unsigned int>& indices, PerGroup perGroup) {
    Groups groups;
    if (!CIndexGrouping::groupByWalk(document, indices, groups)) {
        return false;
    }
    bool all = true;
    for (const auto& [collection, set] : groups) {
        all = perGroup(collection, set) && all;
    }
    return all;
}

inline bool deletePointsByWalk(CStrokeset& document, const std::vector<unsigned int>& indices) {
    return byWalk(document, indices, [&document](auto* collection, const auto& set) {
        auto* path = dynamic_cast<CSubPath*>(collection);
        if (collection->isCompleteCollection(set)) {
            auto& list = document.getCollections();
            list.erase(std::find(list.begin(), list.end(), collection));
            delete collection;
            return true;
        }
        return path != nullptr ? CSubPathSelection::deletePointsOneByOne(*path, set)
                               : collection->deletePoints(set);
    });
}

inline bool changePenByWalk(CStrokeset& document, const std::vector<unsigned int>& indices,
                            unsigned short pen) {
    return byWalk(document, indices, [pen](auto* collection, const auto& set) {
        auto* path = dynamic_cast<CSubPath*>(collection);
        return path != nullptr ? CSubPathSelection::changePenOneByOne(*path, set, pen)
                               : collection->changePen(set, pen);
    });
}

inline bool transformPointsByWalk(CStrokeset& document, const std::vector<unsigned int>& indices,
                                  Matrix& matrix) {
    return byWalk(document, indices, [&matrix](auto* collection, const auto& set) {
        return collection->isCompleteCollection(set) ? collection->transform(matrix)
                                                     : collection->transformPoints(set, matrix);
    });
}

/// copy as it stood; `printed` receives the diagnostic line it would print.
inline bool copyByWalk(CStrokeset& document, const std::vector<unsigned int>& indices,
                       std::vector<unsigned short>& words, std::string& printed) {
    Groups groups;
    if (!CIndexGrouping::groupByWalk(document, indices, groups)) {
        return false; // nothing written, nothing printed
    }
    CSerializationState state(words, nullptr);
    const bool copied = byWalk(document, indices, [&state](auto* collection, const auto& set) {
        return collection->isCompleteCollection(set) ? (collection->copyAll(state), true)
                                                     : collection->copy(set, state);
    });
    if (state.getOpcodeCounter() != indices.size()) {
        char line[80];
        std::snprintf(line, sizeof line, "numOfOpcodes=%d; opcodeIndices=%zu\n",
                      static_cast<int>(state.getOpcodeCounter()), indices.size());
        printed = line;
    }
    return copied;
}

inline std::string bits(const Eigen::RowVector3f& p) {
    std::ostringstream out;
    for (const float value : {p.x(), p.y(), p.z()}) {
        std::uint32_t word;
        std::memcpy(&word, &value, sizeof word);
        out << std::hex << word << ' ';
    }
    return out.str();
}

/// Every field of every line, positions bit for bit (NaN included), then the range.
inline std::string describe(const CSubPath& path) {
    std::ostringstream out;
    for (const CLine& line : path.getLines()) {
        out << line.getOpcodeIndex() << '/' << line.getPenNumber() << ' '
            << bits(line.getPosition()) << "-> " << line.getEndOpcodeIndex() << '/'
            << line.getEndPenNumber() << ' ' << bits(line.getEndPosition()) << '\n';
    }
    out << '[' << path.getMinOpcodeIndex() << ", " << path.getMaxOpcodeIndex() << ']';
    return out.str();
}

} // namespace test
