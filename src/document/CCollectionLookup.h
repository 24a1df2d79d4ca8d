#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <vector>

#include <LibStrokeset/CCollection.h>

#include "document/ELookupRoute.h"

namespace LibStrokeset {

/// Finds the first collection in list order whose index range holds an opcode index, for
/// one document. Ranges may overlap, be empty or leave gaps; the answer is always the one
/// the walk over the list gives.
///
/// The index knows when it is stale: every collection it was built over reports its range
/// changes to a counter the index shares, and the document calls listChanged whenever the
/// list itself may change (its own edits, and every non-const access to the list).
class CCollectionLookup {
public:
    using List = std::list<CCollection*>;
    static constexpr std::size_t notFound = SIZE_MAX;

    CCollectionLookup();
    CCollectionLookup(const CCollectionLookup&) = delete;
    CCollectionLookup& operator=(const CCollectionLookup&) = delete;
    ~CCollectionLookup();

    ELookupRoute route() const;
    void setRoute(ELookupRoute route);

    /// The list may be about to change, or has changed: nothing known about it is used again.
    void listChanged();

    /// The collection holding the index and its position in list order (0 from the front);
    /// list.end() and notFound when no range holds it.
    List::iterator find(List& list, unsigned int opcodeIndex, std::size_t& position);

    /// The reference: the first collection whose range holds the index, by walking.
    static List::iterator walk(List& list, unsigned int opcodeIndex, std::size_t& position);

private:
    bool isCurrent(const List& list) const;
    void build(List& list);
    void paintRanges();
    std::size_t search(unsigned int opcodeIndex) const;

    ELookupRoute m_route;
    CRangeChangeCounter* m_rangeChanges;
    unsigned long long m_rangeChangesSeen;
    bool m_built;
    // What the adaptive route has walked since the last change, in collections visited.
    std::size_t m_walkedSinceChange;

    // The list as built: its entries in order, and its ends to notice a list that changed
    // behind the document's back.
    std::vector<List::iterator> m_entries;
    const CCollection* m_front;
    const CCollection* m_back;

    // The index line is cut at every range start and every range end + 1; piece j runs from
    // m_bounds[j] up to m_bounds[j + 1] and belongs to the entry m_owners[j], the first in
    // list order whose range covers it. No range ends at 4294967295, so every bound fits.
    std::vector<std::uint32_t> m_bounds;
    std::vector<std::uint32_t> m_owners;
};

} // namespace LibStrokeset
