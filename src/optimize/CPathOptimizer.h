#pragma once

#include <atomic>
#include <list>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/COptimizationParameters.h>

#include "optimize/CProgressReporter.h"
#include "optimize/SRunCounters.h"

namespace LibStrokeset {

class CSubPath;

/// One optimize run over a document's list of collections: duplicate removal, autojoin,
/// degenerate-line removal and closing, then the jump-distance ordering. Removed collections
/// are deleted; the abort flag is polled between steps.
class CPathOptimizer {
public:
    CPathOptimizer(std::list<CCollection*>& collections, const std::atomic<bool>& aborted,
                   const COptimizationParameters& parameters, CProgressReporter& reporter);

    /// Runs the phases the parameters switch on and returns what they counted.
    SRunCounters run();

private:
    void removeDuplicates();
    void autojoin();
    void removeDegenerateLines();
    void closeSubpaths();

    /// Compares every sub-path with every collection after it; `test` answers whether it
    /// consumed the later one, which is then deleted. Returns the number of pair steps.
    template <class Report, class Test> unsigned long long pairScan(Report report, Test test);

    bool isDuplicate(CSubPath& outer, CSubPath& inner);
    bool joinInto(CSubPath& outer, CSubPath& inner);
    bool aborted() const;

    std::list<CCollection*>& m_collections;
    const std::atomic<bool>& m_aborted;
    const COptimizationParameters& m_parameters;
    CProgressReporter& m_reporter;
    SRunCounters m_counters;
};

} // namespace LibStrokeset
