#pragma once

// The optimizer's progress on standard error: on a terminal one bar redrawn in place,
// elsewhere (when asked for) one plain line per report, for logs.
namespace Strokeset {

class CProgressBar {
public:
    CProgressBar(bool enabled, bool inPlace);
    /// The optimizer's progress callback: stage 1 to 4 and the percent done in it.
    void show(int stage, float percent);
    /// Clears the bar, so that what follows starts on a clean line.
    void finish();

private:
    bool m_enabled;
    bool m_inPlace;
    bool m_shown = false;
};

} // namespace Strokeset
