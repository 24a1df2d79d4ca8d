// Whole sub-path commands and the order of collections. Every check is made before anything
// changes, so a command that answers false leaves the document as it was.

#include <algorithm>

#include <LibStrokeset/CStrokeset.h>
#include <LibStrokeset/CSubPath.h>

#include "document/CCollectionLookup.h"
#include "document/OwnedCollections.h"

namespace LibStrokeset {

bool CStrokeset::closeSubpath(unsigned int opcodeIndex) {
    CSubPath* subPath = getSubPathIncludingPoint(opcodeIndex);
    if (subPath == nullptr || subPath->getStartIndex() != opcodeIndex) {
        return false;
    }
    return subPath->close();
}

bool CStrokeset::openSubpath(unsigned int opcodeIndex) {
    return cutSubpath(opcodeIndex, &CSubPath::open);
}

bool CStrokeset::splitSubpath(unsigned int opcodeIndex) {
    return cutSubpath(opcodeIndex, &CSubPath::split);
}

bool CStrokeset::cutSubpath(unsigned int opcodeIndex, CSubPath* (CSubPath::*cut)(unsigned int)) {
    const auto found = getIteratorToCollectionIncludingPoint(opcodeIndex);
    auto* subPath = found == m_collections.end() ? nullptr : dynamic_cast<CSubPath*>(*found);
    if (subPath == nullptr || subPath->getStartIndex() == opcodeIndex ||
        subPath->getEndIndex() == opcodeIndex) {
        return false;
    }
    // The part before the cut goes in front of the rest.
    std::unique_ptr<CSubPath> before((subPath->*cut)(opcodeIndex));
    if (!before) {
        return false;
    }
    insertOwned(m_collections, found, std::move(before));
    m_lookup->listChanged();
    return true;
}

bool CStrokeset::findPathsToMeet(unsigned int endIndex, unsigned int startIndex, CSubPath*& first,
                                 CollectionList::iterator& second) {
    first = getSubPathIncludingPoint(endIndex);
    second = getIteratorToCollectionIncludingPoint(startIndex);
    const auto* secondPath =
        second == m_collections.end() ? nullptr : dynamic_cast<const CSubPath*>(*second);
    return first != nullptr && secondPath != nullptr && first->getEndIndex() == endIndex &&
           secondPath->getStartIndex() == startIndex;
}

bool CStrokeset::joinSubpath(unsigned int endIndex, unsigned int startIndex) {
    CSubPath* first = nullptr;
    CollectionList::iterator second;
    if (!findPathsToMeet(endIndex, startIndex, first, second) || first == *second) {
        return false;
    }
    first->joinSubpath(static_cast<CSubPath&>(**second));
    destroy(m_collections, second);
    m_lookup->listChanged();
    return true;
}

bool CStrokeset::connectSubpath(unsigned int endIndex, unsigned int startIndex) {
    CSubPath* first = nullptr;
    CollectionList::iterator second;
    if (!findPathsToMeet(endIndex, startIndex, first, second)) {
        return false;
    }
    if (first == *second) {
        first->close(); // connecting a sub-path to itself closes it, whatever close answers
        return true;
    }
    first->connectSubpath(static_cast<CSubPath&>(**second));
    destroy(m_collections, second);
    m_lookup->listChanged();
    return true;
}

bool CStrokeset::reverseSubpathDirection(unsigned int opcodeIndex) {
    CSubPath* subPath = getSubPathIncludingPoint(opcodeIndex);
    if (subPath == nullptr || subPath->getStartIndex() != opcodeIndex) {
        return false;
    }
    subPath->reverse();
    return true;
}

bool CStrokeset::setClosedSubpathStart(unsigned int startIndex, unsigned int newStartIndex) {
    CSubPath* subPath = getSubPathIncludingPoint(startIndex);
    if (subPath == nullptr || getSubPathIncludingPoint(newStartIndex) != subPath ||
        !subPath->isClosed() || subPath->getStartIndex() != startIndex) {
        return false;
    }
    return newStartIndex == startIndex || subPath->changeStart(newStartIndex);
}

bool CStrokeset::collectionMakeFirst(unsigned int opcodeIndex) {
    const auto found = getIteratorToCollectionNamedByStart(opcodeIndex);
    if (found == m_collections.end()) {
        return false;
    }
    m_collections.splice(m_collections.begin(), m_collections, found);
    m_lookup->listChanged();
    return true;
}

bool CStrokeset::collectionMakeLast(unsigned int opcodeIndex) {
    const auto found = getIteratorToCollectionNamedByStart(opcodeIndex);
    if (found == m_collections.end()) {
        return false;
    }
    m_collections.splice(m_collections.end(), m_collections, found);
    m_lookup->listChanged();
    return true;
}

bool CStrokeset::collectionMoveDown(unsigned int opcodeIndex) {
    const auto found = getIteratorToCollectionNamedByStart(opcodeIndex);
    if (found == m_collections.end()) {
        return false;
    }
    const auto next = std::next(found);
    if (next != m_collections.end()) {
        m_collections.splice(found, m_collections, next);
        m_lookup->listChanged();
    }
    return true;
}

bool CStrokeset::collectionMoveUp(unsigned int opcodeIndex) {
    const auto found = getIteratorToCollectionNamedByStart(opcodeIndex);
    if (found == m_collections.end()) {
        return false;
    }
    if (found != m_collections.begin()) {
        m_collections.splice(std::prev(found), m_collections, found);
        m_lookup->listChanged();
    }
    return true;
}

CStrokeset::CollectionList::iterator
CStrokeset::getIteratorToCollectionNamedByStart(unsigned int opcodeIndex) {
    const auto found = getIteratorToCollectionIncludingPoint(opcodeIndex);
    if (found == m_collections.end() || (*found)->getStartIndex() != opcodeIndex) {
        return m_collections.end();
    }
    return found;
}

} // namespace LibStrokeset
