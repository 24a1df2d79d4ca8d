#include "optimize/common/CProgressReporter.h"

#include <chrono>

#include "elements/Geometry.h"

namespace LibStrokeset {

namespace {
constexpr double reportInterval = 0.33; // seconds
}

long long monotonicNanoseconds() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

CProgressReporter::CProgressReporter(std::function<void(int, float)>& progress, long long startTime)
    : m_progress(progress), m_lastReportTime(startTime) {}

bool CProgressReporter::due(unsigned long long steps, float denominator, float& percent) {
    const long long now = monotonicNanoseconds();
    if (static_cast<double>(now - m_lastReportTime) / 1e9 <= reportInterval) {
        return false;
    }
    m_lastReportTime = now;
    if (!(denominator > zeroDistance)) {
        return false;
    }
    percent = static_cast<float>(steps) / denominator * 100.0f;
    return true;
}

void CProgressReporter::call(int stage, float percent) { m_progress(stage, percent); }

void CProgressReporter::report(int stage, unsigned long long steps, float denominator) {
    float percent = 0.0f;
    if (due(steps, denominator, percent)) {
        call(stage, percent);
    }
}

} // namespace LibStrokeset
