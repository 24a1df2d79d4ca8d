// The document's optimizer entry point and the whole-drawing shuffle and simplify.

#include <algorithm>
#include <random>

#include <LibStrokeset/CStrokeset.h>
#include <LibStrokeset/CSubPath.h>

#include "optimize/CWorkingSequence.h"
#include "optimize/OptimizeCollections.h"

namespace LibStrokeset {

bool CStrokeset::optimize(const COptimizationParameters& parameters, COptimizationResults& results,
                          std::function<void(int, float)> progress) {
    return optimizeCollections(m_collections, m_optimizationAborted, parameters, results,
                               std::move(progress), EOptimizerEngine::eIndexed);
}

bool CStrokeset::shuffle() {
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
