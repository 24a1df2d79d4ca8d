// The document's travel optimizer entry point.

#include <LibStrokeset/CStrokeset.h>

#include "document/CCollectionLookup.h"

#include "optimize/travel/CPenChangeCount.h"
#include "optimize/common/CProgressReporter.h"
#include "optimize/travel/CTravelOrdering.h"

namespace LibStrokeset {

unsigned int CStrokeset::getPenChangeCount() { return CPenChangeCount::of(m_collections); }

bool CStrokeset::optimizeTravel(const CTravelOptimizationParameters& parameters,
                                CTravelOptimizationResults& results,
                                std::function<void(int, float)> progress) {
    m_lookup->listChanged();
    const long long startTime = monotonicNanoseconds();
    m_optimizationAborted.store(false);
    results = CTravelOptimizationResults();
    CProgressReporter reporter(progress, startTime);
    const bool changed = CTravelOrdering(m_collections, m_optimizationAborted, reporter, startTime)
                             .run(parameters, results);
    results.setElapsedTime(static_cast<long long>(
        static_cast<double>(monotonicNanoseconds() - startTime) / 1e9 * 1000.0));
    // The flag is looked at for the last time before anything is applied: a later abort finds
    // the run committed, and the drawing changed is answered as such.
    return changed;
}

} // namespace LibStrokeset
