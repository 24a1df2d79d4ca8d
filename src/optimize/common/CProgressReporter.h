#pragma once

#include <functional>

namespace LibStrokeset {

/// Reads the monotonic clock, in nanoseconds.
long long monotonicNanoseconds();

/// The progress throttle of one optimize run, shared by all its phases: the host's callback
/// is called at most once per 0.33 seconds.
class CProgressReporter {
public:
    CProgressReporter(std::function<void(int, float)>& progress, long long startTime);

    /// At a report point: true, with the percent of steps against denominator, when the
    /// callback is due. Passing 0.33 s since the last report restarts the wait even when the
    /// denominator is too small to report against.
    bool due(unsigned long long steps, float denominator, float& percent);
    /// Calls the host's callback.
    void call(int stage, float percent);
    /// The report point of stages 1 and 3: calls the callback when it is due.
    void report(int stage, unsigned long long steps, float denominator);

private:
    std::function<void(int, float)>& m_progress;
    long long m_lastReportTime;
};

} // namespace LibStrokeset
