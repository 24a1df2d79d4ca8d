#pragma once

#include <cstdint>
#include <list>
#include <vector>

#include <LibStrokeset/CCollection.h>

#include "optimize/rules/SScanContext.h"

namespace LibStrokeset {

class CSubPath;

/// The document's list as the indexed pair scans see it: collections by list position, so
/// that an index can name them, each with its list node for removal. Positions never
/// change while it lives; removed collections are marked dead. Only the scans may change
/// the list meanwhile.
class CScanSnapshot {
public:
    /// Stops early when the flag is set: the scans then end at their first poll.
    CScanSnapshot(std::list<CCollection*>& collections, const std::atomic<bool>& aborted);

    std::uint32_t size() const { return static_cast<std::uint32_t>(m_items.size()); }
    /// The collection at `position` when it is a sub-path with lines that was not removed,
    /// else null.
    CSubPath* path(std::uint32_t position) const { return m_items[position].path; }
    bool alive(std::uint32_t position) const { return m_items[position].alive; }
    /// Takes the sub-path at `position` out of the list and deletes it.
    void remove(std::uint32_t position);

    /// Visits the outers of a pair scan in list order, as the exhaustive scan meets them,
    /// and counts the pair steps that scan makes: an outer's inner run is every collection
    /// behind it when the run starts. `visit(position)` may remove collections behind the
    /// outer. Reports now and then, polls the flag after each outer, returns the steps.
    template <class Visit>
    unsigned long long forEachOuter(const SScanContext& context, Visit visit);

private:
    struct SItem {
        std::list<CCollection*>::iterator node;
        CSubPath* path;
        bool alive;
    };

    std::list<CCollection*>& m_collections;
    std::vector<SItem> m_items;
    std::uint32_t m_aliveCount;
};

template <class Visit>
unsigned long long CScanSnapshot::forEachOuter(const SScanContext& context, Visit visit) {
    // Reading the clock at every outer would cost more than the work of most outers.
    constexpr std::uint32_t reportEvery = 256;
    unsigned long long steps = 0;
    std::uint32_t aliveBefore = 0;
    std::uint32_t outers = 0;
    for (std::uint32_t position = 0; position < size(); ++position) {
        if (!m_items[position].alive) {
            continue;
        }
        if (aliveBefore + 1 >= m_aliveCount) {
            break; // the last collection is never an outer
        }
        if (m_items[position].path != nullptr) {
            steps += m_aliveCount - aliveBefore - 1;
            if (outers++ % reportEvery == 0) {
                context.report(steps);
            }
            visit(position);
            if (context.aborted.load()) {
                break;
            }
        }
        ++aliveBefore;
    }
    return steps;
}

} // namespace LibStrokeset
