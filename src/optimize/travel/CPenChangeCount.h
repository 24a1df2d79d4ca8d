#pragma once

#include <cstddef>
#include <list>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/CSubPath.h>

#include "optimize/travel/COrientedPath.h"

namespace LibStrokeset {

/// Counts the pen change records that serialize writes for collections in drawing order:
/// the writer starts at pen 0 and writes a change before each point whose pen differs from
/// the last one written, never for "no pen".
class CPenChangeCount {
public:
    /// The count for a whole list of collections.
    static unsigned int of(const std::list<CCollection*>& collections);

    /// Counts a collection as it is stored.
    void add(const CCollection* collection);
    /// Counts a sub-path as it will be written in its new orientation.
    void add(const COrientedPath& path);
    /// Counts one point written with `pen`.
    void addPen(unsigned short pen);
    unsigned int changes() const { return m_changes; }
    /// The pen in force: the last one written, 0 before any.
    unsigned short pen() const { return m_pen; }
    /// The pen that draws a point written with `pen` where `inForce` is in force: "no pen"
    /// writes nothing and draws with the pen in force.
    static unsigned short drawingPen(unsigned short pen, unsigned short inForce) {
        return pen == CDrawingElement::noPen ? inForce : pen;
    }

private:
    unsigned short m_pen = 0;
    unsigned int m_changes = 0;
};

} // namespace LibStrokeset
