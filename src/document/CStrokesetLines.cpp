// Drawing lines: new sub-paths, lines at either end of a sub-path, lines started from dots,
// and points inserted into sub-paths. A command that answers false changes nothing.

#include <memory>

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CStrokeset.h>
#include <LibStrokeset/CSubPath.h>

#include "document/CCollectionLookup.h"
#include "document/OwnedCollections.h"

namespace LibStrokeset {

namespace {

/// A sub-path of the one line from start to end.
std::unique_ptr<CSubPath> makeLine(const Eigen::RowVector3f& start, const Eigen::RowVector3f& end,
                                   unsigned short pen, unsigned int startIndex,
                                   unsigned int endIndex) {
    auto subPath = std::make_unique<CSubPath>();
    CLine line(start, end, pen, pen, startIndex, endIndex);
    subPath->addLine(line);
    return subPath;
}

} // namespace

bool CStrokeset::newLine(Eigen::RowVector3f& start, Eigen::RowVector3f& end) {
    insertOwned(m_collections, m_collections.end(),
                makeLine(start, end, m_currentPenNumber, CElement::noIndex, CElement::noIndex));
    m_lookup->listChanged();
    return true;
}

bool CStrokeset::appendLine(Eigen::RowVector3f& position) {
    if (m_collections.empty()) {
        return false;
    }
    CCollection* last = m_collections.back();
    if (auto* subPath = dynamic_cast<CSubPath*>(last)) {
        if (subPath->isEmpty()) {
            return false;
        }
        subPath->appendLine(position);
        return true;
    }
    auto* dots = dynamic_cast<CDotCollection*>(last);
    if (dots == nullptr || dots->isEmpty()) {
        return false;
    }
    // The last dot becomes the start of the new line.
    const CDot& lastDot = *(dots->end() - 1);
    insertOwned(m_collections, m_collections.end(),
                makeLine(lastDot.getPosition(), position, lastDot.getPenNumber(), CElement::noIndex,
                         CElement::noIndex));
    Eigen::RowVector3f dotPosition;
    unsigned short dotPen;
    dots->removeAndGetParamsLast(dotPosition, dotPen);
    if (dots->isEmpty()) {
        destroy(m_collections, std::prev(m_collections.end(), 2));
    }
    m_lookup->listChanged();
    return true;
}

bool CStrokeset::appendLine(unsigned int opcodeIndex, Eigen::RowVector3f& position) {
    if (opcodeIndex == CElement::noIndex) {
        return appendLine(position);
    }
    return extendAt(opcodeIndex, position, true);
}

bool CStrokeset::prependLine(unsigned int opcodeIndex, Eigen::RowVector3f& position) {
    return extendAt(opcodeIndex, position, false);
}

bool CStrokeset::extendAt(unsigned int opcodeIndex, const Eigen::RowVector3f& position,
                          bool atEnd) {
    const auto found = getIteratorToCollectionIncludingPoint(opcodeIndex);
    if (found == m_collections.end()) {
        return false;
    }
    if (auto* subPath = dynamic_cast<CSubPath*>(*found)) {
        // A sub-path is named by its first point, whichever end grows.
        if (subPath->getStartIndex() != opcodeIndex) {
            return false;
        }
        atEnd ? subPath->appendLine(position) : subPath->prependLine(position);
        return true;
    }
    auto* dots = dynamic_cast<CDotCollection*>(*found);
    Eigen::RowVector3f dot;
    unsigned short pen;
    if (dots == nullptr || !dots->getPosition(opcodeIndex, dot) ||
        !dots->getPenNumber(opcodeIndex, pen)) {
        return false;
    }
    // The dot becomes one end of a new line at the end of the drawing and keeps its index.
    insertOwned(m_collections, m_collections.end(),
                atEnd ? makeLine(dot, position, pen, opcodeIndex, CElement::noIndex)
                      : makeLine(position, dot, pen, CElement::noIndex, opcodeIndex));
    dots->removeAndGetParams(opcodeIndex, dot, pen);
    if (dots->isEmpty()) {
        destroy(m_collections, found);
    }
    m_lookup->listChanged();
    return true;
}

bool CStrokeset::insertLine(unsigned int opcodeIndex, Eigen::RowVector3f& start,
                            Eigen::RowVector3f& end) {
    const auto found = getIteratorToCollectionIncludingPoint(opcodeIndex);
    auto where = m_collections.end();
    if (found != m_collections.end()) {
        if ((*found)->getEndIndex() != opcodeIndex) {
            return false;
        }
        where = std::next(found);
    }
    insertOwned(m_collections, where,
                makeLine(start, end, m_currentPenNumber, CElement::noIndex, CElement::noIndex));
    m_lookup->listChanged();
    return true;
}

bool CStrokeset::insertLinePoint(unsigned int opcodeIndex, Eigen::RowVector3f& position) {
    CSubPath* subPath = getSubPathIncludingPoint(opcodeIndex);
    return subPath != nullptr && subPath->insertLinePoint(opcodeIndex, position);
}

} // namespace LibStrokeset
