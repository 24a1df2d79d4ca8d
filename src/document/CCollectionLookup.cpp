#include "document/CCollectionLookup.h"

#include <algorithm>
#include <numeric>

#include "elements/CRangeChangeCounter.h"

namespace LibStrokeset {

namespace {

constexpr std::uint32_t noOwner = UINT32_MAX;

bool holds(const CCollection* collection, unsigned int opcodeIndex) {
    return collection->getMinOpcodeIndex() <= opcodeIndex &&
           opcodeIndex <= collection->getMaxOpcodeIndex();
}

/// The first unpainted piece at or after `piece`; painted pieces point past themselves.
std::uint32_t firstUnpainted(std::vector<std::uint32_t>& next, std::uint32_t piece) {
    while (next[piece] != piece) {
        next[piece] = next[next[piece]];
        piece = next[piece];
    }
    return piece;
}

} // namespace

CCollectionLookup::CCollectionLookup()
    : m_route(ELookupRoute::eAdaptive), m_rangeChanges(new CRangeChangeCounter()),
      m_rangeChangesSeen(0), m_built(false), m_walkedSinceChange(0), m_front(nullptr),
      m_back(nullptr) {}

CCollectionLookup::~CCollectionLookup() { m_rangeChanges->letGo(); }

ELookupRoute CCollectionLookup::route() const { return m_route; }

void CCollectionLookup::setRoute(ELookupRoute route) { m_route = route; }

void CCollectionLookup::listChanged() {
    m_built = false;
    m_walkedSinceChange = 0;
}

CCollectionLookup::List::iterator CCollectionLookup::walk(List& list, unsigned int opcodeIndex,
                                                          std::size_t& position) {
    position = 0;
    for (auto it = list.begin(); it != list.end(); ++it, ++position) {
        if (holds(*it, opcodeIndex)) {
            return it;
        }
    }
    position = notFound;
    return list.end();
}

CCollectionLookup::List::iterator CCollectionLookup::find(List& list, unsigned int opcodeIndex,
                                                          std::size_t& position) {
    if (m_rangeChanges->changes() != m_rangeChangesSeen) {
        // A range changed since the last look, whoever changed it: a change like any other.
        m_rangeChangesSeen = m_rangeChanges->changes();
        listChanged();
    }
    if (!isCurrent(list)) {
        m_built = false;
        const bool walkFirst =
            m_route == ELookupRoute::eAdaptive && m_walkedSinceChange < list.size() + list.size();
        if (m_route == ELookupRoute::eWalk || walkFirst || list.size() >= noOwner) {
            const auto found = walk(list, opcodeIndex, position);
            m_walkedSinceChange += found == list.end() ? list.size() : position + 1;
            return found;
        }
        build(list);
    }
    position = search(opcodeIndex);
    return position == notFound ? list.end() : m_entries[position];
}

bool CCollectionLookup::isCurrent(const List& list) const {
    // The ends and the size are read only as values: a stale index never follows an
    // iterator into a list that may have lost the node.
    return m_built && list.size() == m_entries.size() &&
           (list.empty() || (list.front() == m_front && list.back() == m_back));
}

void CCollectionLookup::build(List& list) {
    m_entries.clear();
    m_entries.reserve(list.size());
    for (auto it = list.begin(); it != list.end(); ++it) {
        CRangeChangeCounter*& held = (*it)->m_rangeChanges;
        if (held != m_rangeChanges) {
            if (held != nullptr) {
                held->letGo();
            }
            m_rangeChanges->hold();
            held = m_rangeChanges;
        }
        m_entries.push_back(it);
    }
    m_front = list.empty() ? nullptr : list.front();
    m_back = list.empty() ? nullptr : list.back();
    paintRanges();
    m_rangeChangesSeen = m_rangeChanges->changes();
    m_built = true;
}

void CCollectionLookup::paintRanges() {
    m_bounds.clear();
    m_bounds.reserve(2 * m_entries.size());
    for (const List::iterator& entry : m_entries) {
        const CCollection* collection = *entry;
        if (collection->getMinOpcodeIndex() <= collection->getMaxOpcodeIndex()) {
            m_bounds.push_back(collection->getMinOpcodeIndex());
            m_bounds.push_back(collection->getMaxOpcodeIndex() + 1);
        }
    }
    // After a serialization the ranges ascend in list order: nothing to sort.
    if (!std::is_sorted(m_bounds.begin(), m_bounds.end())) {
        std::sort(m_bounds.begin(), m_bounds.end());
    }
    m_bounds.erase(std::unique(m_bounds.begin(), m_bounds.end()), m_bounds.end());
    // Neighbouring ranges share their bounds, so about half the room is left over: give it back.
    m_bounds.shrink_to_fit();
    m_owners.assign(m_bounds.size(), noOwner);
    std::vector<std::uint32_t> next(m_bounds.size() + 1);
    std::iota(next.begin(), next.end(), std::uint32_t{0});
    // Entries paint in list order and never over an earlier one: the first range wins.
    for (std::size_t position = 0; position < m_entries.size(); ++position) {
        const CCollection* collection = *m_entries[position];
        if (collection->getMinOpcodeIndex() > collection->getMaxOpcodeIndex()) {
            continue;
        }
        const auto low =
            std::lower_bound(m_bounds.begin(), m_bounds.end(), collection->getMinOpcodeIndex());
        const auto high =
            std::lower_bound(low, m_bounds.end(), collection->getMaxOpcodeIndex() + 1);
        const auto end = static_cast<std::uint32_t>(high - m_bounds.begin());
        for (std::uint32_t piece =
                 firstUnpainted(next, static_cast<std::uint32_t>(low - m_bounds.begin()));
             piece < end; piece = firstUnpainted(next, piece)) {
            m_owners[piece] = static_cast<std::uint32_t>(position);
            next[piece] = piece + 1;
        }
    }
}

std::size_t CCollectionLookup::search(unsigned int opcodeIndex) const {
    const auto after = std::upper_bound(m_bounds.begin(), m_bounds.end(), opcodeIndex);
    if (after == m_bounds.begin()) {
        return notFound;
    }
    const std::uint32_t owner = m_owners[static_cast<std::size_t>(after - m_bounds.begin()) - 1];
    return owner == noOwner ? notFound : owner;
}

} // namespace LibStrokeset
