#include "optimize/indexed/CScanSnapshot.h"

#include <LibStrokeset/CSubPath.h>

#include "optimize/common/CollectionCast.h"
#include "optimize/common/PollInterval.h"

namespace LibStrokeset {

CScanSnapshot::CScanSnapshot(std::list<CCollection*>& collections, const std::atomic<bool>& aborted)
    : m_collections(collections), m_aliveCount(static_cast<std::uint32_t>(collections.size())) {
    m_items.reserve(collections.size());
    for (auto node = collections.begin(); node != collections.end(); ++node) {
        if (m_items.size() % pollEvery == 0 && aborted.load()) {
            break;
        }
        auto* path = collectionCast<CSubPath>(*node);
        m_items.push_back({node, path != nullptr && !path->isEmpty() ? path : nullptr, true});
    }
}

void CScanSnapshot::remove(std::uint32_t position) {
    SItem& item = m_items[position];
    delete item.path;
    m_collections.erase(item.node);
    item.path = nullptr;
    item.alive = false;
    --m_aliveCount;
}

} // namespace LibStrokeset
