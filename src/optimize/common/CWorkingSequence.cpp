#include "optimize/common/CWorkingSequence.h"

#include <memory>

#include <LibStrokeset/CDotCollection.h>

#include "optimize/common/CollectionCast.h"

namespace LibStrokeset {

CWorkingSequence::~CWorkingSequence() {
    for (CCollection* single : m_singleDots) {
        delete single;
    }
}

bool CWorkingSequence::build(const std::list<CCollection*>& collections,
                             const std::function<bool()>& stop) {
    for (CCollection* collection : collections) {
        if (auto* dots = collectionCast<CDotCollection>(collection)) {
            m_splitDots.push_back(dots);
            for (const CDot& dot : *dots) {
                auto single = std::make_unique<CDotCollection>();
                CDot copy(dot.getPosition(), dot.getPenNumber(), CElement::noIndex);
                single->addDot(copy);
                m_singleDots.push_back(single.get());
                m_entries.push_back(single.release());
                m_isSplitDot.push_back(true);
            }
        } else {
            m_entries.push_back(collection);
            m_isSplitDot.push_back(false);
        }
        if (stop && stop()) {
            return false;
        }
    }
    // Grown by doubling, the entries can hold twice what they need, and they stay for the
    // whole ordering of a large drawing.
    m_entries.shrink_to_fit();
    m_singleDots.shrink_to_fit();
    return true;
}

std::vector<CCollection*>& CWorkingSequence::entries() { return m_entries; }

bool CWorkingSequence::isSplitDot(std::size_t index) const { return m_isSplitDot[index]; }

void CWorkingSequence::adopt(std::list<CCollection*>& collections,
                             const std::vector<CCollection*>& order) {
    collections.assign(order.begin(), order.end());
    m_singleDots.clear(); // the document owns them now
    for (CCollection* split : m_splitDots) {
        delete split;
    }
    m_splitDots.clear();
}

} // namespace LibStrokeset
