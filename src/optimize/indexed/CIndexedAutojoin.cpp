#include "optimize/indexed/CIndexedAutojoin.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <numeric>

#include <LibStrokeset/CSubPath.h>

#include "optimize/common/PollInterval.h"

namespace LibStrokeset {

CIndexedAutojoin::CIndexedAutojoin(CScanSnapshot& snapshot, float tolerance)
    : m_snapshot(snapshot), m_tolerance(tolerance), m_isChanged(m_snapshot.size(), true) {}

std::vector<CEndPointGrid::SEnd>
CIndexedAutojoin::endsOf(const std::vector<std::uint32_t>& positions,
                         const std::atomic<bool>& aborted) const {
    std::vector<CEndPointGrid::SEnd> ends;
    ends.reserve(2 * positions.size());
    for (std::size_t i = 0; i < positions.size(); ++i) {
        if (i % pollEvery == 0 && aborted.load()) {
            break;
        }
        if (const CSubPath* path = m_snapshot.path(positions[i])) {
            CEndPointGrid::addEnd(positions[i], path->getFirstPosition(), ends);
            CEndPointGrid::addEnd(positions[i], path->getLastPosition(), ends);
        }
    }
    return ends;
}

std::vector<bool> CIndexedAutojoin::outersNearChanges(const CEndPointGrid& moved,
                                                      const std::atomic<bool>& aborted) const {
    std::vector<bool> marked(m_snapshot.size(), false);
    std::vector<CEndPointGrid::SEnd> ends = endsOf(m_changed, aborted);
    m_start->sortByCell(ends);
    for (std::size_t i = 0; i < ends.size(); ++i) {
        if (i % pollEvery == 0 && aborted.load()) {
            break;
        }
        const CEndPointGrid::SEnd& end = ends[i];
        const auto mark = [&marked, &end](std::uint32_t outer) {
            if (outer < end.position) {
                marked[outer] = true;
            }
        };
        const Eigen::RowVector3f p(end.x, end.y, 0.0f);
        m_start->forEachNear(p, mark);
        moved.forEachNear(p, mark);
    }
    return marked;
}

bool CIndexedAutojoin::prepare(const std::atomic<bool>& aborted) {
    // Only inners are looked up. An outer's ends move as it grows, but an outer is never an
    // inner again in the same pass, and the inners behind it have not moved yet: the grids
    // built now stay true for every search of the pass. A moved sub-path is found through
    // its current ends in m_movedGrid, and maybe through stale ones in m_start, which the
    // pair rules then turn down.
    const bool firstPass = !m_start;
    if (firstPass) {
        std::vector<std::uint32_t> all(m_snapshot.size());
        std::iota(all.begin(), all.end(), 0u);
        m_start.emplace(m_tolerance, endsOf(all, aborted));
    }
    m_movedGrid.emplace(*m_start, endsOf(m_moved, aborted));
    // An outer that joined nothing in the previous pass was tested there, with the ends it
    // still has, against every sub-path behind it, and those that joined nothing either
    // still have the ends they were tested with. So until it joins, such an outer can only
    // join one of the sub-paths that changed, and only if one of them ends near it.
    // In the first pass every outer is new, but one without a later sub-path ending near
    // it has nothing to search for until it joins, which it then cannot.
    m_worthSearching.assign(m_snapshot.size(), false);
    if (firstPass) {
        m_start->markNearLater(m_worthSearching, aborted);
    } else {
        m_changedGrid.emplace(*m_start, endsOf(m_changed, aborted));
        m_worthSearching = outersNearChanges(*m_movedGrid, aborted);
    }
    return !aborted.load();
}

bool CIndexedAutojoin::serves(float tolerance) {
    return !(tolerance > std::numeric_limits<float>::max());
}

unsigned long long CIndexedAutojoin::pass(const SScanContext& context, int& joined) {
    // A tolerance not above 0 (or NaN) accepts no distance: nothing joins.
    if (!(m_tolerance > 0.0f) || !prepare(context.aborted)) {
        return m_snapshot.forEachOuter(context, [](std::uint32_t) {});
    }
    const bool firstPass = !m_changedGrid;
    const CEndPointGrid& moved = *m_movedGrid;
    // Outers come in ascending position, so these lists stay sorted.
    std::vector<std::uint32_t> changing;
    const unsigned long long steps = m_snapshot.forEachOuter(context, [&](std::uint32_t outer) {
        const int before = joined;
        if (firstPass) {
            if (m_worthSearching[outer]) {
                joinAll(context, outer, &*m_start, nullptr, moved, joined);
            }
        } else if (m_isChanged[outer]) {
            joinAll(context, outer, &*m_start, &moved, moved, joined);
        } else if (m_worthSearching[outer]) {
            joinAll(context, outer, &*m_changedGrid, nullptr, moved, joined);
        }
        if (joined != before) {
            changing.push_back(outer);
        }
    });
    std::vector<std::uint32_t> everMoved;
    std::set_union(m_moved.begin(), m_moved.end(), changing.begin(), changing.end(),
                   std::back_inserter(everMoved));
    m_moved.swap(everMoved);
    std::fill(m_isChanged.begin(), m_isChanged.end(), false);
    for (const std::uint32_t position : changing) {
        m_isChanged[position] = true;
    }
    m_changed.swap(changing);
    return steps;
}

void CIndexedAutojoin::joinAll(const SScanContext& context, std::uint32_t outer,
                               const CEndPointGrid* first, const CEndPointGrid* second,
                               const CEndPointGrid& moved, int& joined) {
    CSubPath& outerPath = *m_snapshot.path(outer);
    std::uint32_t after = outer;
    while (!context.aborted.load()) {
        int code = 0;
        const auto accept = [&](std::uint32_t candidate) {
            CSubPath* innerPath = m_snapshot.path(candidate);
            code = innerPath == nullptr ? 0 : context.rules.joinCode(outerPath, *innerPath);
            return code != 0;
        };
        const Eigen::RowVector3f& a = outerPath.getFirstPosition();
        const Eigen::RowVector3f& b = outerPath.getLastPosition();
        const std::uint32_t inner =
            second == nullptr ? CEndPointGrid::firstAfter({first}, a, b, after, accept)
                              : CEndPointGrid::firstAfter({first, second}, a, b, after, accept);
        if (inner == CEndPointGrid::none) {
            return;
        }
        CPairRules::join(outerPath, *m_snapshot.path(inner), code);
        m_snapshot.remove(inner);
        ++joined;
        after = inner;
        // Once it has joined, the outer may meet any sub-path.
        first = &*m_start;
        second = &moved;
    }
}

} // namespace LibStrokeset
