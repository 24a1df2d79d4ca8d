#include "optimize/indexed/CIndexedDuplicateScan.h"

#include <cmath>
#include <cstring>

#include <LibStrokeset/CSubPath.h>

#include "optimize/indexed/CPositionGroups.h"
#include "optimize/indexed/CScanSnapshot.h"
#include "optimize/common/PollInterval.h"

namespace LibStrokeset {

namespace {

/// A hash of the values that isEqual compares, in its order, and whether they can compare
/// equal at all.
class CSignature {
public:
    explicit CSignature(std::size_t lines) { mix(lines); }

    void add(const Eigen::RowVector3f& position, unsigned short pen) {
        const std::uint64_t x = bitsOf(position.x()), y = bitsOf(position.y());
        const std::uint64_t z = bitsOf(position.z());
        // NaN is the one value unequal to itself.
        m_comparable = m_comparable && position.x() == position.x() &&
                       position.y() == position.y() && position.z() == position.z();
        mix(x | y << 32);
        mix(z | std::uint64_t(pen) << 32);
    }

    /// Never the free key of the groups.
    std::uint64_t key() const { return m_hash == CFlatIndexMap::freeKey ? 0 : m_hash; }
    bool comparable() const { return m_comparable; }

private:
    static std::uint32_t bitsOf(float value) {
        // -0 and +0 compare equal, so they must hash alike.
        const float canonical = value == 0.0f ? 0.0f : value;
        std::uint32_t bits;
        std::memcpy(&bits, &canonical, sizeof bits);
        return bits;
    }

    void mix(std::uint64_t value) {
        m_hash = (m_hash ^ value) * 0xBF58476D1CE4E5B9ull;
        m_hash ^= m_hash >> 29;
    }

    std::uint64_t m_hash = 0;
    bool m_comparable = true;
};

/// The path as isEqual reads it: the first point with its start pen, then every end point
/// with its end pen.
CSignature forwardSignature(const CSubPath& path) {
    const std::vector<CLine>& lines = path.getLines();
    CSignature signature(lines.size());
    signature.add(lines.front().getPosition(), lines.front().getPenNumber());
    for (const CLine& line : lines) {
        signature.add(line.getEndPosition(), line.getEndPenNumber());
    }
    return signature;
}

/// The same for a reversed copy of the path: reversing swaps the positions of every line
/// and reverses their order, while the pens stay in their fields.
CSignature reversedSignature(const CSubPath& path) {
    const std::vector<CLine>& lines = path.getLines();
    CSignature signature(lines.size());
    signature.add(lines.back().getEndPosition(), lines.back().getPenNumber());
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        signature.add(line->getPosition(), line->getEndPenNumber());
    }
    return signature;
}

bool finite(const Eigen::RowVector3f& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y()) && std::isfinite(p.z());
}

} // namespace

CIndexedDuplicateScan::CIndexedDuplicateScan(const SScanContext& context, CScanSnapshot& snapshot)
    : m_context(context), m_snapshot(snapshot) {}

unsigned long long CIndexedDuplicateScan::run(int& duplicated) {
    const COptimizationParameters& parameters = m_context.rules.parameters();
    // A duplicate has its end points at distance 0 from the outer's, which a tolerance not
    // above 0 (or NaN) rejects: then nothing is searched.
    const bool matches = parameters.positionTolerance() > 0.0f;
    const bool forward = matches && parameters.removeDuplicatedPaths();
    const bool backward = matches && parameters.removeDuplicatedReversedPaths();
    if (!forward && !backward) {
        return m_snapshot.forEachOuter(m_context, [](std::uint32_t) {});
    }
    hashAll(backward);
    if (m_context.aborted.load()) {
        return m_snapshot.forEachOuter(m_context, [](std::uint32_t) {});
    }
    std::vector<CPositionGroups::SKeyedPosition> forwardKeys, backwardKeys;
    chooseCandidates(forward, backward, forwardKeys, backwardKeys);
    const CPositionGroups forwardGroups(forwardKeys), backwardGroups(backwardKeys);

    return m_snapshot.forEachOuter(m_context, [&](std::uint32_t outer) {
        if (!m_outers[outer]) {
            return;
        }
        CSubPath& outerPath = *m_snapshot.path(outer);
        // The two candidate lists merged in list order; a path can be in both.
        CPositionGroups::SRange a = forwardGroups.after(m_keys[outer], outer);
        CPositionGroups::SRange b = backwardGroups.after(m_keys[outer], outer);
        while (a.first != a.last || b.first != b.last) {
            const bool fromA = b.first == b.last || (a.first != a.last && *a.first <= *b.first);
            const std::uint32_t candidate = fromA ? *a.first++ : *b.first++;
            if (m_snapshot.alive(candidate) &&
                m_context.rules.isDuplicate(outerPath, *m_snapshot.path(candidate))) {
                m_snapshot.remove(candidate);
                ++duplicated;
            }
        }
    });
}

void CIndexedDuplicateScan::hashAll(bool backward) {
    const std::uint32_t size = m_snapshot.size();
    m_keys.assign(size, 0);
    m_reversedKeys.assign(size, 0);
    m_comparable.assign(size, 0);
    for (std::uint32_t position = 0; position < size; ++position) {
        if (position % pollEvery == 0 && m_context.aborted.load()) {
            return;
        }
        const CSubPath* path = m_snapshot.path(position);
        // Equal ends with an infinite coordinate lie at a NaN distance, which no tolerance
        // accepts: such a path is no duplicate and has none.
        if (path == nullptr || !finite(path->getFirstPosition()) ||
            !finite(path->getLastPosition())) {
            continue;
        }
        const CSignature signature = forwardSignature(*path);
        m_keys[position] = signature.key();
        m_comparable[position] = signature.comparable() ? forwardComparable : 0;
        if (backward) {
            const CSignature reversed = reversedSignature(*path);
            m_reversedKeys[position] = reversed.key();
            m_comparable[position] |= reversed.comparable() ? backwardComparable : 0;
        }
    }
}

void CIndexedDuplicateScan::chooseCandidates(
    bool forward, bool backward, std::vector<CPositionGroups::SKeyedPosition>& forwardKeys,
    std::vector<CPositionGroups::SKeyedPosition>& backwardKeys) {
    // Most paths repeat no other. Bit sets of the hashes (a few bits per path) show which
    // may, so that only those are grouped and searched: a path without a partner in them
    // has none among the hashes either.
    const std::uint32_t size = m_snapshot.size();
    std::size_t bits = 64;
    while (bits < 8 * static_cast<std::size_t>(size)) {
        bits *= 2;
    }
    const auto bit = [bits](std::uint64_t key) {
        return static_cast<std::size_t>(key) & (bits - 1);
    };
    std::vector<bool> forwardOnce(bits, false), forwardTwice(bits, false),
        backwardSeen(bits, false);
    for (std::uint32_t position = 0; position < size; ++position) {
        if ((m_comparable[position] & forwardComparable) != 0) {
            const std::size_t at = bit(m_keys[position]);
            forwardTwice[at] = forwardTwice[at] || forwardOnce[at];
            forwardOnce[at] = true;
        }
        if ((m_comparable[position] & backwardComparable) != 0) {
            backwardSeen[bit(m_reversedKeys[position])] = true;
        }
    }
    m_outers.assign(size, false);
    for (std::uint32_t position = 0; position < size; ++position) {
        const bool forwardOk = (m_comparable[position] & forwardComparable) != 0;
        const bool backwardOk = (m_comparable[position] & backwardComparable) != 0;
        const bool repeated = forward && forwardOk && forwardTwice[bit(m_keys[position])];
        const bool reversesOne = backward && forwardOk && backwardSeen[bit(m_keys[position])];
        const bool reversedByOne =
            backward && backwardOk && forwardOnce[bit(m_reversedKeys[position])];
        m_outers[position] = repeated || reversesOne;
        if (repeated) {
            forwardKeys.emplace_back(m_keys[position], position);
        }
        if (reversedByOne) {
            backwardKeys.emplace_back(m_reversedKeys[position], position);
        }
    }
}

} // namespace LibStrokeset
