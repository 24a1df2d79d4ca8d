#pragma once

#include <atomic>
#include <functional>
#include <list>

#include <LibStrokeset/CCollection.h>

#include "optimize/rules/CPairRules.h"

namespace LibStrokeset {

/// What the duplicate and autojoin scans work on: the document's list, the abort flag and
/// the pair rules. `report` is called with the pair steps of the scan so far.
struct SScanContext {
    std::list<CCollection*>& collections;
    const std::atomic<bool>& aborted;
    const CPairRules& rules;
    std::function<void(unsigned long long)> report;
};

} // namespace LibStrokeset
