#include "document/CIndexGrouping.h"

#include <LibStrokeset/CStrokeset.h>

#include "elements/CUnclaimedIndices.h"

namespace LibStrokeset {

namespace {

/// Moves the unclaimed indices inside the collection's range into its group.
void claimRange(CCollection* collection, CUnclaimedIndices& pending,
                CIndexGrouping::Groups& groups) {
    const unsigned int lowest = collection->getMinOpcodeIndex();
    const unsigned int highest = collection->getMaxOpcodeIndex();
    if (lowest > highest) {
        return; // the empty range holds nothing
    }
    std::set<unsigned int>* group = nullptr;
    for (std::size_t p = pending.firstFrom(lowest); p != pending.end() && pending.at(p) <= highest;
         p = pending.claim(p)) {
        if (group == nullptr) {
            group = &groups[collection];
        }
        group->insert(group->end(), pending.at(p)); // ascending: always the new greatest
    }
}

} // namespace

bool CIndexGrouping::group(const std::list<CCollection*>& collections,
                           const std::vector<unsigned int>& indices, Groups& groups) {
    groups.clear();
    CUnclaimedIndices pending(indices);
    for (auto it = collections.begin(); it != collections.end() && pending.unclaimedCount() != 0;
         ++it) {
        claimRange(*it, pending, groups);
    }
    if (pending.unclaimedCount() != 0) {
        groups.clear();
        return false;
    }
    return true;
}

bool CIndexGrouping::groupByWalk(CStrokeset& document, const std::vector<unsigned int>& indices,
                                 Groups& groups) {
    groups.clear();
    for (const unsigned int index : indices) {
        CCollection* collection = document.getCollectionIncludingPoint(index);
        if (collection == nullptr) {
            groups.clear();
            return false;
        }
        groups[collection].insert(index);
    }
    return true;
}

} // namespace LibStrokeset
