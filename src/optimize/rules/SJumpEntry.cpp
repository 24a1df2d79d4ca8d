#include "optimize/rules/SJumpEntry.h"

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CSubPath.h>

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

} // namespace LibStrokeset
