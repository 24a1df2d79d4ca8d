// Whole-drawing shuffle and simplify.

#include <algorithm>
#include <random>

#include <LibStrokeset/CStrokeset.h>

#include "document/CCollectionLookup.h"
#include <LibStrokeset/CSubPath.h>

#include "optimize/common/CWorkingSequence.h"

namespace LibStrokeset {

bool CStrokeset::shuffle() {
    m_lookup->listChanged();
    CWorkingSequence sequence;
    sequence.build(m_collections, nullptr);
    std::vector<CCollection*> order = sequence.entries();
    std::mt19937 engine(std::random_device{}());
    std::shuffle(order.begin(), order.end(), engine);
    sequence.adopt(m_collections, order);
    return true;
}

void CStrokeset::simplify(float tolerance) {
    for (CCollection* collection : m_collections) {
        if (auto* subPath = dynamic_cast<CSubPath*>(collection)) {
            subPath->simplify(tolerance);
        }
    }
}

} // namespace LibStrokeset
