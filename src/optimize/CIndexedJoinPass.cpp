#include "optimize/CIndexedJoinPass.h"

#include <LibStrokeset/CSubPath.h>

#include "optimize/CEndPointGrid.h"
#include "optimize/CScanSnapshot.h"

namespace LibStrokeset {

CIndexedJoinPass::CIndexedJoinPass(const SScanContext& context) : m_context(context) {}

unsigned long long CIndexedJoinPass::run(int& joined) {
    CScanSnapshot snapshot(m_context.collections);
    const float tolerance = m_context.rules.parameters().positionTolerance();
    // A tolerance not above 0 (or NaN) accepts no distance: nothing joins.
    if (!(tolerance > 0.0f)) {
        return snapshot.forEachOuter(m_context, [](std::uint32_t) {});
    }
    // Only inners are indexed. The outer's ends move as it grows, but an outer is never an
    // inner again in this pass, so the grid stays true for every later search.
    const CEndPointGrid grid(snapshot, tolerance);
    return snapshot.forEachOuter(m_context, [&](std::uint32_t outer) {
        CSubPath& outerPath = *snapshot.path(outer);
        std::uint32_t after = outer;
        while (!m_context.aborted.load()) {
            int code = 0;
            const std::uint32_t inner = grid.firstAfter(
                outerPath.getFirstPosition(), outerPath.getLastPosition(), after,
                [&](std::uint32_t candidate) {
                    if (!snapshot.alive(candidate)) {
                        return false;
                    }
                    code = m_context.rules.joinCode(outerPath, *snapshot.path(candidate));
                    return code != 0;
                });
            if (inner == CEndPointGrid::none) {
                break;
            }
            CPairRules::join(outerPath, *snapshot.path(inner), code);
            snapshot.remove(inner);
            ++joined;
            after = inner;
        }
    });
}

} // namespace LibStrokeset
