// The document's optimizer entry point.

#include <LibStrokeset/CStrokeset.h>

#include "optimize/CPathOptimizer.h"
#include "optimize/CProgressReporter.h"

namespace LibStrokeset {

bool CStrokeset::optimize(const COptimizationParameters& parameters, COptimizationResults& results,
                          std::function<void(int, float)> progress) {
    const long long startTime = monotonicNanoseconds();
    m_optimizationAborted.store(false);
    CProgressReporter reporter(progress, startTime);
    CPathOptimizer optimizer(m_collections, m_optimizationAborted, parameters, reporter);
    const SRunCounters counters = optimizer.run();
    const long long endTime = monotonicNanoseconds();

    results.setPasses(counters.passes);
    results.setEstimatedRuns(counters.estimatedRuns);
    results.setPerformedRuns(counters.performedRuns);
    results.setStartCollectionSize(counters.startSize);
    results.setEndCollectionSize(counters.currentSize);
    results.setDuplicatedPaths(counters.duplicated);
    results.setAutojoinedPaths(counters.autojoined);
    results.setClosedSubpaths(counters.closed);
    results.setDegeneratedLines(counters.degenerated);
    results.setTotalJumpDistanceBeforeOptimization(counters.jumpDistanceBefore);
    results.setTotalJumpDistanceAfterOptimization(counters.jumpDistanceAfter);
    results.setElapsedTime(
        static_cast<long long>(static_cast<double>(endTime - startTime) / 1e9 * 1000.0));

    if (m_optimizationAborted.load()) {
        return false;
    }
    return counters.reordered + counters.closed + counters.degenerated + counters.autojoined +
               counters.duplicated >
           0;
}

} // namespace LibStrokeset
