#include "optimize/rules/SJumpEntry.h"

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CSubPath.h>

#include "elements/Geometry.h"
#include "optimize/common/CollectionCast.h"

namespace LibStrokeset {

SJumpEntry SJumpEntry::describe(CCollection* collection) {
    // Unsupported records and sub-paths without lines have no jump end points.
    if (auto* subPath = collectionCast<CSubPath>(collection)) {
        if (!subPath->isEmpty()) {
            return {collection, true, subPath->getFirstPosition(), subPath->getLastPosition()};
        }
    } else if (auto* dots = collectionCast<CDotCollection>(collection)) {
        if (!dots->isEmpty()) {
            return {collection, true, dots->getFirstPosition(), dots->getLastPosition()};
        }
    }
    return {collection, false, Eigen::RowVector3f::Zero(), Eigen::RowVector3f::Zero()};
}

SJumpEntry SJumpEntry::describeSingleDot(CCollection* collection) {
    const auto* dots = static_cast<const CDotCollection*>(collection);
    return {collection, true, dots->getFirstPosition(), dots->getLastPosition()};
}

float sumOfJumps(const std::vector<SJumpEntry>& entries, const std::atomic<bool>& aborted) {
    float total = 0.0f;
    for (std::size_t i = 0; i + 1 < entries.size(); ++i) {
        if (entries[i].hasEnds && entries[i + 1].hasEnds) {
            total += distance(entries[i].end, entries[i + 1].start);
        }
        if (aborted.load()) {
            break;
        }
    }
    return total;
}

} // namespace LibStrokeset
