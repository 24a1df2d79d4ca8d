#include "optimize/reference/CPairScan.h"

#include <iterator>

#include <LibStrokeset/CSubPath.h>

#include "optimize/common/CollectionCast.h"

namespace LibStrokeset {

CPairScan::CPairScan(const SScanContext& context) : m_context(context) {}

template <class Consumes> unsigned long long CPairScan::scan(Consumes consumes) {
    std::list<CCollection*>& collections = m_context.collections;
    unsigned long long steps = 0;
    // The last collection is never an outer; only inners are removed, so the collection
    // nearer the front survives every pair and may grow while its inners are scanned.
    for (auto outer = collections.begin();
         outer != collections.end() && std::next(outer) != collections.end(); ++outer) {
        auto* outerPath = collectionCast<CSubPath>(*outer);
        if (outerPath == nullptr || outerPath->isEmpty()) {
            continue;
        }
        for (auto inner = std::next(outer); inner != collections.end();) {
            m_context.report(++steps);
            auto* innerPath = collectionCast<CSubPath>(*inner);
            if (innerPath != nullptr && consumes(*outerPath, *innerPath)) {
                delete innerPath;
                inner = collections.erase(inner);
                continue;
            }
            if (m_context.aborted.load()) {
                return steps;
            }
            ++inner;
        }
        if (m_context.aborted.load()) {
            return steps;
        }
    }
    return steps;
}

unsigned long long CPairScan::removeDuplicates(int& duplicated) {
    return scan([&](CSubPath& outer, CSubPath& inner) {
        const bool duplicate = m_context.rules.isDuplicate(outer, inner);
        duplicated += duplicate ? 1 : 0;
        return duplicate;
    });
}

unsigned long long CPairScan::joinPass(int& joined) {
    return scan([&](CSubPath& outer, CSubPath& inner) {
        const int code = m_context.rules.joinCode(outer, inner);
        if (code == 0) {
            return false;
        }
        CPairRules::join(outer, inner, code);
        ++joined;
        return true;
    });
}

} // namespace LibStrokeset
