#pragma once

// Walks the greedy order of a decoded drawing's collections twice, once searching a jump
// tree of one point per leaf and once offering every remaining entry, and names the first
// step at which the two choose differently. Leaves of one point give small drawings a deep
// tree, which the ordering's own leaves would fold into one.

#include <atomic>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "DrawingDecoder.h"
#include "optimize/indexed/CJumpTree.h"

namespace test {

inline std::string compareTreeWalk(const DecodedRun& input) {
    LibStrokeset::CStrokeset document(input.words);
    for (unsigned int index : input.emptied) {
        document.deletePoint(index);
    }
    std::vector<LibStrokeset::SJumpEntry> entries;
    for (LibStrokeset::CCollection* collection : document.getCollections()) {
        entries.push_back(LibStrokeset::SJumpEntry::describe(collection));
    }
    const std::atomic<bool> running{false};
    LibStrokeset::CJumpTree tree(entries, running, 1);
    std::vector<bool> removed(entries.size(), false);
    std::size_t next = 0;
    bool reversed = false;
    for (std::size_t step = 0; step < entries.size(); ++step) {
        removed[next] = true;
        tree.remove(next);
        const LibStrokeset::SJumpEntry& placed = entries[next];
        LibStrokeset::SJumpChoice scanned, indexed;
        Eigen::RowVector3f exit;
        std::ostringstream where;
        where << "step " << step << ", entry " << next << ": ";
        if (tree.exitOf(next, reversed, exit) != placed.hasEnds) {
            return where.str() + "exit found for an entry without ends, or none for one with";
        }
        if (placed.hasEnds) {
            const Eigen::RowVector3f& expected = reversed ? placed.start : placed.end;
            if (std::memcmp(exit.data(), expected.data(), sizeof(float) * 3) != 0) {
                return where.str() + "exit differs from the entry's end";
            }
            tree.offerNearest(exit, next, indexed);
            for (std::size_t j = 0; j < entries.size(); ++j) {
                if (!removed[j] && entries[j].hasEnds) {
                    scanned.offer(exit, entries[j], j);
                }
            }
        }
        if (indexed.index != scanned.index || indexed.reversed != scanned.reversed) {
            where << "the tree chose " << indexed.index << ", the scan " << scanned.index;
            return where.str();
        }
        if (scanned.found()) {
            next = scanned.index;
            reversed = scanned.reversed;
        } else {
            next = 0;
            while (next < entries.size() && removed[next]) {
                ++next;
            }
            reversed = false;
        }
    }
    return {};
}

} // namespace test
