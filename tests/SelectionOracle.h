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

inline bool deletePointsByWalk(CStrokeset& document, const std::vector<unsigned int>& indices) {
    Groups groups;
    if (!CIndexGrouping::groupByWalk(document, indices, groups)) {
        return false;
    }
    bool deleted = true;
    auto& list = document.getCollections();
    for (const auto& [collection, set] : groups) {
        if (collection->isCompleteCollection(set)) {
            delete collection;
            list.erase(std::find(list.begin(), list.end(), collection));
        } else if (auto* path = dynamic_cast<CSubPath*>(collection)) {
            deleted = CSubPathSelection::deletePointsOneByOne(*path, set) && deleted;
        } else {
            deleted = collection->deletePoints(set) && deleted;
        }
    }
    return deleted;
}

inline bool changePenByWalk(CStrokeset& document, const std::vector<unsigned int>& indices,
                            unsigned short pen) {
    Groups groups;
    if (!CIndexGrouping::groupByWalk(document, indices, groups)) {
        return false;
    }
    bool changed = true;
    for (const auto& [collection, set] : groups) {
        auto* path = dynamic_cast<CSubPath*>(collection);
        changed = (path != nullptr ? CSubPathSelection::changePenOneByOne(*path, set, pen)
                                   : collection->changePen(set, pen)) &&
                  changed;
    }
    return changed;
}

inline bool transformPointsByWalk(CStrokeset& document, const std::vector<unsigned int>& indices,
                                  Matrix& matrix) {
    Groups groups;
    if (!CIndexGrouping::groupByWalk(document, indices, groups)) {
        return false;
    }
    bool mapped = true;
    for (const auto& [collection, set] : groups) {
        mapped =
            (collection->isCompleteCollection(set) ? collection->transform(matrix)
                                                   : collection->transformPoints(set, matrix)) &&
            mapped;
    }
    return mapped;
}

/// copy as it stood; `printed` receives the diagnostic line it would print.
inline bool copyByWalk(CStrokeset& document, const std::vector<unsigned int>& indices,
                       std::vector<unsigned short>& words, std::string& printed) {
    Groups groups;
    if (!CIndexGrouping::groupByWalk(document, indices, groups)) {
        return false;
    }
    CSerializationState state(words, nullptr);
    bool copied = true;
    for (const auto& [collection, set] : groups) {
        if (collection->isCompleteCollection(set)) {
            collection->copyAll(state);
        } else {
            copied = collection->copy(set, state) && copied;
        }
    }
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
