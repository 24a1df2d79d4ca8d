#include "document/CIndexGrouping.h"

#include <algorithm>
#include <functional>
#include <tuple>
#include <utility>

#include <LibStrokeset/CStrokeset.h>

#include "document/CUnclaimedIndices.h"

namespace LibStrokeset {

namespace {

/// What one collection claimed: the indices in claimed[first, last).
struct SClaim {
    CCollection* collection;
    std::size_t first;
    std::size_t last;
};

/// Appends the unclaimed indices inside the collection's range to `claimed`, ascending.
void claimRange(CCollection* collection, CUnclaimedIndices& pending,
                std::vector<unsigned int>& claimed, std::vector<SClaim>& claims) {
    const unsigned int lowest = collection->getMinOpcodeIndex();
    const unsigned int highest = collection->getMaxOpcodeIndex();
    if (lowest > highest) {
        return; // the empty range holds nothing
    }
    const std::size_t first = claimed.size();
    for (std::size_t p = pending.firstFrom(lowest); p != pending.end() && pending.at(p) <= highest;
         p = pending.claim(p)) {
        claimed.push_back(pending.at(p));
    }
    if (claimed.size() != first) {
        claims.push_back({collection, first, claimed.size()});
    }
}

/// Fills the map in its own key order, so that every group, and every index in its set,
/// goes in at the end without a search. The keys are distinct: a collection listed twice
/// claims its whole range at its first place.
void fillInKeyOrder(std::vector<SClaim>& claims, const std::vector<unsigned int>& claimed,
                    CIndexGrouping::Groups& groups) {
    const std::less<CCollection*> before;
    std::sort(claims.begin(), claims.end(), [&before](const SClaim& a, const SClaim& b) {
        return before(a.collection, b.collection);
    });
    for (const SClaim& claim : claims) {
        const auto first = claimed.begin() + static_cast<std::ptrdiff_t>(claim.first);
        const auto last = claimed.begin() + static_cast<std::ptrdiff_t>(claim.last);
        groups.emplace_hint(groups.end(), std::piecewise_construct,
                            std::forward_as_tuple(claim.collection),
                            std::forward_as_tuple(first, last));
    }
}

} // namespace

bool CIndexGrouping::group(const std::list<CCollection*>& collections,
                           const std::vector<unsigned int>& indices, Groups& groups) {
    groups.clear();
    CUnclaimedIndices pending(indices);
    std::vector<unsigned int> claimed;
    claimed.reserve(pending.unclaimedCount());
    std::vector<SClaim> claims;
    for (auto it = collections.begin(); it != collections.end() && pending.unclaimedCount() != 0;
         ++it) {
        claimRange(*it, pending, claimed, claims);
    }
    if (pending.unclaimedCount() != 0) {
        return false;
    }
    fillInKeyOrder(claims, claimed, groups);
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
