#include "optimize/travel/CPenChangeCount.h"

#include <LibStrokeset/CDotCollection.h>

#include "optimize/common/CollectionCast.h"

namespace LibStrokeset {

unsigned int CPenChangeCount::of(const std::list<CCollection*>& collections) {
    CPenChangeCount count;
    for (const CCollection* collection : collections) {
        count.add(collection);
    }
    return count.changes();
}

void CPenChangeCount::add(const CCollection* collection) {
    auto* mutableCollection = const_cast<CCollection*>(collection);
    if (const auto* path = collectionCast<CSubPath>(mutableCollection)) {
        if (!path->isEmpty()) {
            const std::vector<CLine>& lines = path->getLines();
            for (const CLine& line : lines) {
                addPen(line.getPenNumber());
            }
            addPen(lines.back().getEndPenNumber());
        }
    } else if (const auto* dots = collectionCast<CDotCollection>(mutableCollection)) {
        for (const CDot& dot : *dots) {
            addPen(dot.getPenNumber());
        }
    }
}

void CPenChangeCount::add(const COrientedPath& path) {
    for (std::size_t point = 0; point < path.pointCount(); ++point) {
        addPen(path.pen(point));
    }
}

void CPenChangeCount::addPen(unsigned short pen) {
    if (pen != CDrawingElement::noPen && pen != m_pen) {
        m_pen = pen;
        ++m_changes;
    }
}

} // namespace LibStrokeset
