#include "optimize/travel/CTravelPenGroups.h"

#include <algorithm>
#include <map>

namespace LibStrokeset {

std::vector<CTravelPenGroups::SGroup>
CTravelPenGroups::of(const std::vector<SPens>& pens, const std::vector<std::uint32_t>& members,
                     bool byPen) {
    std::vector<SGroup> groups;
    std::map<unsigned short, std::size_t> groupOfPen;
    std::vector<std::uint32_t> mixed;
    for (std::uint32_t entry : members) {
        const unsigned short from = byPen ? pens[entry].first : 0;
        const unsigned short to = byPen ? pens[entry].last : 0;
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
        const unsigned short from = pens[entry].first, to = pens[entry].last;
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
