// Reading and editing points by opcode index.

#include <iterator>
#include <utility>

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CStrokeset.h>

#include "document/CCollectionLookup.h"
#include "document/CIndexGrouping.h"
#include "document/OwnedCollections.h"

namespace LibStrokeset {

bool CStrokeset::mapIndicesToCollections(const std::vector<unsigned int>& opcodeIndices,
                                         std::map<CCollection*, std::set<unsigned int>>& groups) {
    // A few indices cost a few searches; many cost one pass over the list, which is cheaper
    // than a search each once they number more than a small share of the collections.
    const ELookupRoute route = m_lookup->route();
    if (route == ELookupRoute::eWalk ||
        (route == ELookupRoute::eAdaptive && opcodeIndices.size() >= m_collections.size() / 16)) {
        return CIndexGrouping::group(m_collections, opcodeIndices, groups);
    }
    groups.clear();
    for (const unsigned int index : opcodeIndices) {
        CCollection* collection = getCollectionIncludingPoint(index);
        if (collection == nullptr) {
            groups.clear();
            return false;
        }
        groups[collection].insert(index);
    }
    return true;
}

bool CStrokeset::getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) {
    const CCollection* collection = getCollectionIncludingPoint(opcodeIndex);
    return collection != nullptr && collection->getPosition(opcodeIndex, position);
}

bool CStrokeset::setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) {
    CCollection* collection = getCollectionIncludingPoint(opcodeIndex);
    return collection != nullptr && collection->setPosition(opcodeIndex, position);
}

bool CStrokeset::getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber) {
    const CCollection* collection = getCollectionIncludingPoint(opcodeIndex);
    return collection != nullptr && collection->getPenNumber(opcodeIndex, penNumber);
}

bool CStrokeset::setPenNumber(unsigned int opcodeIndex, unsigned short& penNumber) {
    CCollection* collection = getCollectionIncludingPoint(opcodeIndex);
    return collection != nullptr && collection->setPenNumber(opcodeIndex, penNumber);
}

bool CStrokeset::transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix) {
    CCollection* collection = getCollectionIncludingPoint(opcodeIndex);
    return collection != nullptr && collection->transformPoint(opcodeIndex, matrix);
}

bool CStrokeset::deletePoint(unsigned int opcodeIndex) {
    // A collection that loses its last point stays in the list, empty.
    CCollection* collection = getCollectionIncludingPoint(opcodeIndex);
    return collection != nullptr && collection->deletePoint(opcodeIndex);
}

bool CStrokeset::changePen(const std::vector<unsigned int>& opcodeIndices,
                           unsigned short penNumber) {
    std::map<CCollection*, std::set<unsigned int>> groups;
    if (!mapIndicesToCollections(opcodeIndices, groups)) {
        return false;
    }
    bool changed = true;
    for (const auto& [collection, indices] : groups) {
        changed = collection->changePen(indices, penNumber) && changed;
    }
    return changed;
}

bool CStrokeset::deletePoints(const std::vector<unsigned int>& opcodeIndices) {
    std::map<CCollection*, std::set<unsigned int>> groups;
    if (!mapIndicesToCollections(opcodeIndices, groups)) {
        return false;
    }
    bool deleted = true;
    std::set<CCollection*> whole;
    for (const auto& [collection, indices] : groups) {
        if (collection->isCompleteCollection(indices)) {
            // A selection of the whole collection removes the collection itself.
            whole.insert(whole.end(), collection);
        } else {
            deleted = collection->deletePoints(indices) && deleted;
        }
    }
    if (!whole.empty()) {
        destroyAll(m_collections, std::move(whole));
        m_lookup->listChanged();
    }
    return deleted;
}

bool CStrokeset::transformPoints(const std::vector<unsigned int>& opcodeIndices,
                                 Eigen::Matrix<float, 3, 4>& matrix) {
    std::map<CCollection*, std::set<unsigned int>> groups;
    if (!mapIndicesToCollections(opcodeIndices, groups)) {
        return false;
    }
    bool transformed = true;
    for (const auto& [collection, indices] : groups) {
        const bool result = collection->isCompleteCollection(indices)
                                ? collection->transform(matrix)
                                : collection->transformPoints(indices, matrix);
        transformed = result && transformed;
    }
    return transformed;
}

bool CStrokeset::transform(Eigen::Matrix<float, 3, 4>& matrix) {
    bool transformed = true;
    for (CCollection* collection : m_collections) {
        transformed = collection->transform(matrix) && transformed;
    }
    return transformed;
}

bool CStrokeset::insertDot(unsigned int opcodeIndex, Eigen::RowVector3f& position) {
    const auto found = getIteratorToCollectionIncludingPoint(opcodeIndex);
    auto where = m_collections.end();
    if (found != m_collections.end()) {
        if (auto* dots = dynamic_cast<CDotCollection*>(*found)) {
            return dots->insertDot(opcodeIndex, position);
        }
        // A dot cannot go inside a sub-path or a run of records, only after its end.
        if ((*found)->getEndIndex() != opcodeIndex) {
            return false;
        }
        where = std::next(found);
    }
    CDot dot(position, m_currentPenNumber, CElement::noIndex);
    insertNew<CDotCollection>(m_collections, where)->addDot(dot);
    m_lookup->listChanged();
    return true;
}

bool CStrokeset::newDot(Eigen::RowVector3f& position) {
    auto* dots =
        m_collections.empty() ? nullptr : dynamic_cast<CDotCollection*>(m_collections.back());
    if (dots == nullptr) {
        dots = appendNew<CDotCollection>(m_collections);
        m_lookup->listChanged();
    }
    CDot dot(position, m_currentPenNumber, CElement::noIndex);
    dots->addDot(dot);
    return true;
}

} // namespace LibStrokeset
