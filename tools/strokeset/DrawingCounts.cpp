#include "DrawingCounts.h"

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CSubPath.h>

namespace Strokeset {

unsigned int writtenCollectionCount(const LibStrokeset::CStrokeset& drawing) {
    unsigned int count = 0;
    enum EKind { ePath, eDots, eRecords, eNothing } previous = eNothing;
    for (const LibStrokeset::CCollection* collection : drawing.getCollections()) {
        if (collection->isEmpty()) {
            continue;
        }
        const EKind kind =
            dynamic_cast<const LibStrokeset::CSubPath*>(collection) != nullptr         ? ePath
            : dynamic_cast<const LibStrokeset::CDotCollection*>(collection) != nullptr ? eDots
                                                                                       : eRecords;
        count += kind == ePath || kind != previous ? 1 : 0;
        previous = kind;
    }
    return count;
}

unsigned int drawnPointCount(LibStrokeset::CStrokeset& drawing) {
    return drawing.getPointsCount() - drawing.getUnsupportedOpcodeCount();
}

} // namespace Strokeset
