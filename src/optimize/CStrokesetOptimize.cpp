// The document's optimizer entry point.

#include <LibStrokeset/CStrokeset.h>

#include "document/CCollectionLookup.h"

#include "optimize/OptimizeCollections.h"

namespace LibStrokeset {

bool CStrokeset::optimize(const COptimizationParameters& parameters, COptimizationResults& results,
                          std::function<void(int, float)> progress) {
    m_lookup->listChanged();
    return optimizeCollections(m_collections, m_optimizationAborted, parameters, results,
                               std::move(progress), EOptimizerEngine::eIndexed);
}

} // namespace LibStrokeset
