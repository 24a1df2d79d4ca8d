#pragma once

#include <cstddef>
#include <list>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/CSubPath.h>

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
    /// Counts a sub-path as it would be written after its lines were rotated to start at
    /// line `rotation` and then, when `reversed`, turned around by reverse.
    void add(const CSubPath& path, std::size_t rotation, bool reversed);
    unsigned int changes() const { return m_changes; }

private:
    void addPen(unsigned short pen);

    unsigned short m_pen = 0;
    unsigned int m_changes = 0;
};

} // namespace LibStrokeset
