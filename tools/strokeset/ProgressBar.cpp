#include "ProgressBar.h"

#include <cstdio>
#include <string>

namespace Strokeset {

namespace {

const char* stageName(int stage) {
    switch (stage) {
    case 1: return "removing duplicates";
    case 2: return "joining paths";
    case 3: return "closing paths";
    case 4: return "ordering to cut travel";
    default: return "optimizing";
    }
}

} // namespace

CProgressBar::CProgressBar(bool enabled, bool inPlace) : m_enabled(enabled), m_inPlace(inPlace) {}

void CProgressBar::show(int stage, float percent) {
    if (!m_enabled) {
        return;
    }
    const float clamped = percent >= 0.0f ? (percent <= 100.0f ? percent : 100.0f) : 0.0f;
    constexpr int width = 30;
    const int filled = static_cast<int>(clamped / 100.0f * width);
    const std::string bar =
        std::string(static_cast<std::size_t>(filled), '#') + std::string(width - filled, '.');
    // \r returns to the start of the line and \033[K clears the rest of it.
    std::fprintf(stderr, "%sstage %d/4 %-22s [%s] %3.0f%%%s", m_inPlace ? "\r" : "", stage,
                 stageName(stage), bar.c_str(), static_cast<double>(clamped),
                 m_inPlace ? "\033[K" : "\n");
    std::fflush(stderr);
    m_shown = true;
}

void CProgressBar::finish() {
    if (m_shown && m_inPlace) {
        std::fputs("\r\033[K", stderr);
        std::fflush(stderr);
        m_shown = false;
    }
}

} // namespace Strokeset
