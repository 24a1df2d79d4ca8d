#pragma once

#include <atomic>
#include <functional>
#include <list>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/COptimizationParameters.h>
#include <LibStrokeset/COptimizationResults.h>

#include "optimize/EOptimizerEngine.h"

namespace LibStrokeset {

/// An optimize run over a list of collections with the given engine: everything that
/// CStrokeset::optimize does (which uses the indexed engine), with `aborted` as the
/// document's optimization-aborted flag. Internal: for the optimizer's own tests,
/// benchmarks and fuzzer, which compare the engines.
bool optimizeCollections(std::list<CCollection*>& collections, std::atomic<bool>& aborted,
                         const COptimizationParameters& parameters, COptimizationResults& results,
                         std::function<void(int, float)> progress, EOptimizerEngine engine);

} // namespace LibStrokeset
