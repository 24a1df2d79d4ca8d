#include "optimize/CTravelPenGroups.h"

#include <algorithm>
#include <map>

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CSubPath.h>

#include "optimize/CollectionCast.h"

namespace LibStrokeset {

void CTravelPenGroups::pensOf(const SJumpEntry& entry, unsigned short& first,
                              unsigned short& last) {
    if (const auto* path = collectionCast<CSubPath>(entry.collection)) {
        first = path->getLines().front().getPenNumber();
        last = path->getLines().back().getEndPenNumber();
    } else if (const auto* dots = collectionCast<CDotCollection>(entry.collection)) {
        first = last = dots->begin()->getPenNumber();
    } else {
        first = last = CDrawingElement::noPen;
    }
}

std::vector<CTravelPenGroups::SGroup> CTravelPenGroups::of(const std::vector<SJumpEntry>& entries,
                                                           std::uint32_t first, std::uint32_t last,
                                                           bool byPen) {
    std::vector<SGroup> groups;
    std::map<unsigned short, std::size_t> groupOfPen;
    std::vector<std::uint32_t> mixed;
    for (std::uint32_t entry = first; entry < last; ++entry) {
        unsigned short from = 0, to = 0;
        if (byPen) {
            pensOf(entries[entry], from, to);
        }
        const auto found = groupOfPen.emplace(from, groups.size());
        if (found.second) {
            groups.emplace_back();
        }
        if (from != to) {
            mixed.push_back(entry);
        } else {
            groups[found.first->second].entries.push_back(entry);
        }
    }
    // Bridges go after the group they leave: bridgeAfter[g] for group g.
    std::vector<SGroup> bridgeAfter(groups.size());
    for (std::uint32_t entry : mixed) {
        unsigned short from = 0, to = 0;
        pensOf(entries[entry], from, to);
        const std::size_t a = groupOfPen.at(from);
        const auto b = groupOfPen.find(to);
        const bool forward = b != groupOfPen.end() && b->second == a + 1;
        const bool backward = b != groupOfPen.end() && b->second + 1 == a;
        SGroup& bridge = bridgeAfter[forward ? a : backward ? b->second : 0];
        if ((forward || backward) && !bridge.bridge) {
            bridge = {{entry}, true, backward};
        } else {
            groups[a].entries.push_back(entry);
        }
    }
    std::vector<SGroup> ordered;
    for (std::size_t g = 0; g < groups.size(); ++g) {
        if (!groups[g].entries.empty()) {
            std::sort(groups[g].entries.begin(), groups[g].entries.end());
            ordered.push_back(std::move(groups[g]));
        }
        if (bridgeAfter[g].bridge) {
            ordered.push_back(std::move(bridgeAfter[g]));
        }
    }
    return ordered;
}

} // namespace LibStrokeset
