#pragma once

#include <cstdint>
#include <vector>

#include "optimize/indexed/CPositionGroups.h"
#include "optimize/rules/SScanContext.h"

namespace LibStrokeset {

class CScanSnapshot;

/// Duplicate removal without comparing every pair: every sub-path is hashed as the
/// duplicate test reads it, forwards and backwards, and an outer is tested by the pair rules
/// only against the later sub-paths whose hash equals its own. Removes, counts and reports
/// as the exhaustive scan does.
class CIndexedDuplicateScan {
public:
    CIndexedDuplicateScan(const SScanContext& context, CScanSnapshot& snapshot);

    /// Returns the pair steps and adds the removed paths to `duplicated`.
    unsigned long long run(int& duplicated);

private:
    static constexpr std::uint8_t forwardComparable = 1;
    static constexpr std::uint8_t backwardComparable = 2;

    /// The hashes of every sub-path, forwards and (when asked) backwards.
    void hashAll(bool backward);
    /// Marks the outers worth searching and lists the possible inners by hash.
    void chooseCandidates(bool forward, bool backward,
                          std::vector<CPositionGroups::SKeyedPosition>& forwardKeys,
                          std::vector<CPositionGroups::SKeyedPosition>& backwardKeys);

    const SScanContext& m_context;
    CScanSnapshot& m_snapshot;
    std::vector<std::uint64_t> m_keys;
    std::vector<std::uint64_t> m_reversedKeys;
    /// Whether the hashes can match at all: no NaN among the values they cover.
    std::vector<std::uint8_t> m_comparable;
    std::vector<bool> m_outers;
};

} // namespace LibStrokeset
