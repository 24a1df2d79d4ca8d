#pragma once

namespace LibStrokeset {

/// What one optimize run counts while its phases work.
struct SRunCounters {
    int passes = 0;
    unsigned long long estimatedRuns = 0;
    unsigned long long performedRuns = 0;
    int startSize = 0;
    /// The list's size after duplicate removal and after each autojoin pass.
    int currentSize = 0;
    int duplicated = 0;
    int autojoined = 0;
    int degenerated = 0;
    int closed = 0;
    /// 1 when the jump-distance ordering adopted a new order.
    int reordered = 0;
    float jumpDistanceBefore = 0.0f;
    float jumpDistanceAfter = 0.0f;
};

/// (s - 1) * s / 2 in unsigned 64-bit arithmetic: the pairs of s collections.
inline unsigned long long pairCount(long long size) {
    return static_cast<unsigned long long>(size - 1) * static_cast<unsigned long long>(size) / 2;
}

/// The same count in float, the denominator of the pair scans' progress.
inline float pairCountAsFloat(int size) {
    return static_cast<float>(size - 1) * static_cast<float>(size) * 0.5f;
}

} // namespace LibStrokeset
