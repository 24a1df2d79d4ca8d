#pragma once

#include <cstddef>
#include <vector>

namespace LibStrokeset {

/// The distinct opcode indices of one request, in ascending order, each to be claimed once,
/// by the first collection in list order whose range holds it. Claimed positions are skipped
/// through links to the next unclaimed position, shortened as they are followed, so a search
/// costs about a logarithm.
class CUnclaimedIndices {
public:
    explicit CUnclaimedIndices(const std::vector<unsigned int>& indices);

    /// Position of the smallest unclaimed index not below `lowest`; end() when there is none.
    std::size_t firstFrom(unsigned int lowest);
    /// Claims the position and returns the next unclaimed one after it (or end()).
    std::size_t claim(std::size_t position);
    unsigned int at(std::size_t position) const;
    std::size_t end() const;
    std::size_t unclaimedCount() const;

private:
    /// Position of the first index (claimed or not) not below `lowest`.
    std::size_t lowerBound(unsigned int lowest);
    std::size_t skipClaimed(std::size_t position);

    std::vector<unsigned int> m_indices;
    /// m_next[i] == i while position i is unclaimed; one extra entry stands for end().
    std::vector<std::size_t> m_next;
    std::size_t m_unclaimed;
    /// The last lowerBound answer, where the next search starts when it can.
    std::size_t m_finger;
};

} // namespace LibStrokeset
