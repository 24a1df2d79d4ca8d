#include "optimize/CPenChangeCount.h"

#include <LibStrokeset/CDotCollection.h>

#include "optimize/CollectionCast.h"

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
        add(*path, 0, false);
    } else if (const auto* dots = collectionCast<CDotCollection>(mutableCollection)) {
        for (const CDot& dot : *dots) {
            addPen(dot.getPenNumber());
        }
    }
}

void CPenChangeCount::add(const CSubPath& path, std::size_t rotation, bool reversed) {
    const std::vector<CLine>& lines = path.getLines();
    const std::size_t n = lines.size();
    if (n == 0) {
        return;
    }
    // Line k of the rotated path; reverse keeps each line's pens in their fields, so the
    // reversed path writes the rotated lines' start pens backwards, then the first one's end.
    const auto rotated = [&](std::size_t k) -> const CLine& { return lines[(k + rotation) % n]; };
    for (std::size_t k = 0; k < n; ++k) {
        addPen(rotated(reversed ? n - 1 - k : k).getPenNumber());
    }
    addPen(rotated(reversed ? 0 : n - 1).getEndPenNumber());
}

void CPenChangeCount::addPen(unsigned short pen) {
    if (pen != CDrawingElement::noPen && pen != m_pen) {
        m_pen = pen;
        ++m_changes;
    }
}

} // namespace LibStrokeset
