// Loading a word stream into collections appended to the document.

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CStrokeset.h>
#include <LibStrokeset/CSubPath.h>
#include <LibStrokeset/CUnsupportedElementCollection.h>

#include "document/CCollectionLookup.h"
#include "document/OwnedCollections.h"
#include "stream/CRecordReader.h"

namespace LibStrokeset {

namespace {

/// The collection the last records went into; a record of another kind opens a new one.
struct SOpenCollection {
    CDotCollection* dots = nullptr;
    CSubPath* subPath = nullptr;
    CUnsupportedElementCollection* records = nullptr;

    void close() { *this = SOpenCollection(); }
};

} // namespace

bool CStrokeset::paste(const std::vector<unsigned short>& words) {
    m_lookup->listChanged();
    CRecordReader reader(words);
    SRecord record;
    SOpenCollection open;
    // A move-to makes no element: it is the anchor the next line-to starts from.
    Eigen::RowVector3f lastPosition = Eigen::RowVector3f::Zero();
    unsigned int anchorIndex = 0;
    unsigned short anchorPen = CDrawingElement::noPen;

    while (reader.next(record)) {
        switch (record.kind) {
        case SRecord::ePenChange:
            m_currentPenNumber = record.pen;
            continue; // not an opcode: no index
        case SRecord::eDot: {
            lastPosition = record.position;
            if (open.dots == nullptr) {
                open.close();
                open.dots = appendNew<CDotCollection>(m_collections);
            }
            CDot dot(record.position, m_currentPenNumber, m_opcodeCount);
            open.dots->addDot(dot);
            break;
        }
        case SRecord::eMoveTo:
            lastPosition = record.position;
            anchorIndex = m_opcodeCount;
            anchorPen = m_currentPenNumber;
            open.close();
            break;
        case SRecord::eLineTo: {
            if (open.subPath == nullptr) {
                open.close();
                open.subPath = appendNew<CSubPath>(m_collections);
            }
            CLine line(lastPosition, record.position, anchorPen, m_currentPenNumber, anchorIndex,
                       m_opcodeCount);
            open.subPath->addLine(line);
            lastPosition = record.position;
            anchorIndex = m_opcodeCount;
            anchorPen = m_currentPenNumber;
            break;
        }
        case SRecord::eUnsupported: {
            const auto first = words.begin() + static_cast<std::ptrdiff_t>(record.offset);
            std::vector<unsigned short> recordWords(
                first, first + static_cast<std::ptrdiff_t>(record.length));
            CUnsupportedElement element(recordWords, m_opcodeCount);
            if (open.records == nullptr) {
                open.close();
                open.records = appendNew<CUnsupportedElementCollection>(m_collections);
            }
            open.records->addElement(element);
            break;
        }
        }
        ++m_opcodeCount;
    }
    return !reader.stoppedAtCutRecord();
}

unsigned int CStrokeset::getCutRecordPosition(const std::vector<unsigned short>& words) {
    CRecordReader reader(words);
    SRecord record;
    while (reader.next(record)) {
    }
    return reader.stoppedAtCutRecord() ? static_cast<unsigned int>(reader.position())
                                       : CElement::noIndex;
}

} // namespace LibStrokeset
