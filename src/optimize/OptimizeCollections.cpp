#include "optimize/OptimizeCollections.h"

#include "optimize/CPathOptimizer.h"
#include "optimize/common/CProgressReporter.h"

namespace LibStrokeset {

bool optimizeCollections(std::list<CCollection*>& collections, std::atomic<bool>& aborted,
                         const COptimizationParameters& parameters, COptimizationResults& results,
                         std::function<void(int, float)> progress, EOptimizerEngine engine) {
    const long long startTime = monotonicNanoseconds();
    aborted.store(false);
    CProgressReporter reporter(progress, startTime);
    CPathOptimizer optimizer(collections, aborted, parameters, reporter, engine);
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

    if (aborted.load()) {
        return false;
    }
    return counters.reordered + counters.closed + counters.degenerated + counters.autojoined +
               counters.duplicated >
           0;
}

} // namespace LibStrokeset
