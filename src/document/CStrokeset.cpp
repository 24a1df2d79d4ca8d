// Document core: construction, copying, queries, visiting and serialization.

#include <LibStrokeset/CStrokeset.h>

#include <algorithm>

#include <LibStrokeset/CElement.h>
#include <LibStrokeset/CSubPath.h>

#include "document/CCollectionLookup.h"
#include "stream/CSerializationState.h"

namespace LibStrokeset {

CStrokeset::CStrokeset()
    : m_opcodeCount(0), m_currentPenNumber(CDrawingElement::noPen), m_optimizationAborted(false),
      m_lookup(std::make_unique<CCollectionLookup>()) {}

CStrokeset::CStrokeset(const std::vector<unsigned short>& words) : CStrokeset() {
    setBinaryStrokesetData(words);
}

CStrokeset::CStrokeset(const CStrokeset& other) : CStrokeset() {
    // A copy is what loading the source's stream gives; writing it renumbers the source.
    std::vector<unsigned short> words;
    const_cast<CStrokeset&>(other).serialize(words, nullptr);
    reload(words);
}

CStrokeset& CStrokeset::operator=(const CStrokeset& other) {
    if (this != &other) {
        std::vector<unsigned short> words;
        const_cast<CStrokeset&>(other).serialize(words, nullptr);
        reload(words);
    }
    return *this;
}

CStrokeset::~CStrokeset() { clearData(); }

void CStrokeset::clearData() {
    for (CCollection* collection : m_collections) {
        delete collection;
    }
    m_collections.clear();
    m_lookup->listChanged();
}

bool CStrokeset::reload(const std::vector<unsigned short>& words) {
    m_opcodeCount = 0;
    m_currentPenNumber = CDrawingElement::noPen;
    clearData();
    return paste(words);
}

CCollectionLookup& lookupOf(CStrokeset& document) { return *document.m_lookup; }

// Whoever holds the list or its iterators may change it: the lookup forgets what it knew.
CStrokeset::CollectionList& CStrokeset::getCollections() {
    m_lookup->listChanged();
    return m_collections;
}
const CStrokeset::CollectionList& CStrokeset::getCollections() const { return m_collections; }
CStrokeset::CollectionList::iterator CStrokeset::begin() {
    m_lookup->listChanged();
    return m_collections.begin();
}
CStrokeset::CollectionList::iterator CStrokeset::end() {
    m_lookup->listChanged();
    return m_collections.end();
}
CStrokeset::CollectionList::const_iterator CStrokeset::begin() const {
    return m_collections.begin();
}
CStrokeset::CollectionList::const_iterator CStrokeset::end() const { return m_collections.end(); }
CStrokeset::CollectionList::const_iterator CStrokeset::cbegin() const {
    return m_collections.cbegin();
}
CStrokeset::CollectionList::const_iterator CStrokeset::cend() const { return m_collections.cend(); }
CStrokeset::CollectionList::const_reverse_iterator CStrokeset::rbegin() const {
    return m_collections.crbegin();
}
CStrokeset::CollectionList::const_reverse_iterator CStrokeset::rend() const {
    return m_collections.crend();
}
CStrokeset::CollectionList::const_reverse_iterator CStrokeset::crbegin() const {
    return m_collections.crbegin();
}
CStrokeset::CollectionList::const_reverse_iterator CStrokeset::crend() const {
    return m_collections.crend();
}

unsigned int CStrokeset::getOpcodeCount() { return m_opcodeCount; }

unsigned int CStrokeset::getPointsCount() {
    unsigned int count = 0;
    for (const CCollection* collection : m_collections) {
        count += collection->getPointsCount();
    }
    return count;
}

unsigned int CStrokeset::getUnsupportedOpcodeCount() {
    unsigned int count = 0;
    for (const CCollection* collection : m_collections) {
        count += collection->getUnsupportedOpcodeCount();
    }
    return count;
}

CStrokeset::CollectionList::iterator
CStrokeset::getIteratorToCollectionIncludingPoint(unsigned int opcodeIndex) {
    std::size_t position = 0;
    return m_lookup->find(m_collections, opcodeIndex, position);
}

CCollection* CStrokeset::getCollectionIncludingPoint(unsigned int opcodeIndex) {
    const auto found = getIteratorToCollectionIncludingPoint(opcodeIndex);
    return found == m_collections.end() ? nullptr : *found;
}

unsigned int CStrokeset::getCollectionIndexOfPoint(unsigned int opcodeIndex) {
    std::size_t position = 0;
    if (m_lookup->find(m_collections, opcodeIndex, position) == m_collections.end()) {
        return CElement::noIndex;
    }
    return static_cast<unsigned int>(position);
}

CSubPath* CStrokeset::getSubPathIncludingPoint(unsigned int opcodeIndex) {
    return dynamic_cast<CSubPath*>(getCollectionIncludingPoint(opcodeIndex));
}

EOpcodeType CStrokeset::getOpcodeType(unsigned int opcodeIndex) {
    if (opcodeIndex > m_opcodeCount) {
        return eNone;
    }
    const CCollection* collection = getCollectionIncludingPoint(opcodeIndex);
    return collection == nullptr ? eNone : collection->getOpcodeType(opcodeIndex);
}

bool CStrokeset::getOpcodeTypes(std::vector<EOpcodeType>& types) {
    types.assign(m_opcodeCount, eNone);
    bool allNumbered = true;
    for (const CCollection* collection : m_collections) {
        allNumbered = collection->getOpcodeTypes(types) && allNumbered;
    }
    return allNumbered;
}

void CStrokeset::iterate(IIteratorCallback& callback) {
    for (CCollection* collection : m_collections) {
        collection->iterate(callback);
    }
}

unsigned int CStrokeset::serialize(std::vector<unsigned short>& words,
                                   std::vector<unsigned int>* indexMap) {
    if (indexMap != nullptr && indexMap->size() < m_opcodeCount) {
        indexMap->resize(m_opcodeCount, CElement::noIndex);
    }
    CSerializationState state(words, indexMap);
    for (CCollection* collection : m_collections) {
        collection->serialize(state);
    }
    m_opcodeCount = state.getOpcodeCounter();
    return m_opcodeCount;
}

bool CStrokeset::setBinaryStrokesetData(const std::vector<unsigned short>& words) {
    return reload(words);
}

void CStrokeset::setOptimizationAborted() { m_optimizationAborted.store(true); }

bool CStrokeset::isOptimizationAborted() { return m_optimizationAborted.load(); }

} // namespace LibStrokeset
