#pragma once

#include <atomic>
#include <list>
#include <optional>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/COptimizationParameters.h>

#include "optimize/rules/CPairRules.h"
#include "optimize/common/CProgressReporter.h"
#include "optimize/indexed/CScanSnapshot.h"
#include "optimize/EOptimizerEngine.h"
#include "optimize/common/SRunCounters.h"

namespace LibStrokeset {

/// One optimize run over a document's list of collections: duplicate removal, autojoin,
/// degenerate-line removal and closing, then the jump-distance ordering. Removed collections
/// are deleted; the abort flag is polled between steps. The engine decides how the pairs
/// and the jumps are found, never what is done with them.
class CPathOptimizer {
public:
    CPathOptimizer(std::list<CCollection*>& collections, const std::atomic<bool>& aborted,
                   const COptimizationParameters& parameters, CProgressReporter& reporter,
                   EOptimizerEngine engine);

    /// Runs the phases the parameters switch on and returns what they counted.
    SRunCounters run();

private:
    void removeDuplicates();
    void autojoin();
    void removeDegenerateLines();
    void closeSubpaths();
    bool aborted() const;
    /// The list as the indexed pair scans see it, made once for both of them.
    CScanSnapshot& snapshot();

    std::list<CCollection*>& m_collections;
    const std::atomic<bool>& m_aborted;
    const COptimizationParameters& m_parameters;
    CPairRules m_rules;
    CProgressReporter& m_reporter;
    EOptimizerEngine m_engine;
    SRunCounters m_counters;
    std::optional<CScanSnapshot> m_snapshot;
};

} // namespace LibStrokeset
