#pragma once

#include "optimize/rules/SScanContext.h"

namespace LibStrokeset {

class CSubPath;

/// The exhaustive scans: every sub-path against every collection after it, in list order,
/// with a progress report at every pair step and the flag polled after every pair. The
/// reference that the indexed scans must match.
class CPairScan {
public:
    explicit CPairScan(const SScanContext& context);

    /// Duplicate removal; returns its pair steps and adds the removed paths to `duplicated`.
    unsigned long long removeDuplicates(int& duplicated);
    /// One autojoin pass; returns its pair steps and adds the joined paths to `joined`.
    unsigned long long joinPass(int& joined);

private:
    /// `consumes` answers whether the outer consumed the inner, which is then deleted.
    template <class Consumes> unsigned long long scan(Consumes consumes);

    const SScanContext& m_context;
};

} // namespace LibStrokeset
