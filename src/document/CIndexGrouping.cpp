#include "document/CIndexGrouping.h"

#include <algorithm>
#include <functional>
#include <utility>

#include <LibStrokeset/CStrokeset.h>

#include "elements/CUnclaimedIndices.h"

namespace LibStrokeset {

namespace {

using Claimed = std::vector<std::pair<CCollection*, std::set<unsigned int>>>;

/// Moves the unclaimed indices inside the collection's range into a group of its own.
void claimRange(CCollection* collection, CUnclaimedIndices& pending, Claimed& claimed) {
    const unsigned int lowest = collection->getMinOpcodeIndex();
    const unsigned int highest = collection->getMaxOpcodeIndex();
    if (lowest > highest) {
        return; // the empty range holds nothing
    }
    std::set<unsigned int>* group = nullptr;
    for (std::size_t p = pending.firstFrom(lowest); p != pending.end() && pending.at(p) <= highest;
         p = pending.claim(p)) {
        if (group == nullptr) {
            group = &claimed.emplace_back(collection, std::set<unsigned int>()).second;
        }
        group->insert(group->end(), pending.at(p)); // ascending: always the new greatest
    }
}

/// Fills the map in its own key order, so each group goes in at the end without a search.
/// The keys are distinct: a collection listed twice claims its whole range at its first place.
void fillInKeyOrder(Claimed& claimed, CIndexGrouping::Groups& groups) {
    const std::less<CCollection*> before;
    std::sort(claimed.begin(), claimed.end(),
              [&before](const auto& a, const auto& b) { return before(a.first, b.first); });
    for (auto& [collection, group] : claimed) {
        groups.emplace_hint(groups.end(), collection, std::move(group));
    }
}

} // namespace

bool CIndexGrouping::group(const std::list<CCollection*>& collections,
                           const std::vector<unsigned int>& indices, Groups& groups) {
    groups.clear();
    CUnclaimedIndices pending(indices);
    Claimed claimed;
    for (auto it = collections.begin(); it != collections.end() && pending.unclaimedCount() != 0;
         ++it) {
        claimRange(*it, pending, claimed);
    }
    if (pending.unclaimedCount() != 0) {
        return false;
    }
    fillInKeyOrder(claimed, groups);
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
