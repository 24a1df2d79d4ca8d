#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

namespace LibStrokeset {

/// Which clean-up phases an optimize run performs, and the tolerance they use.
class LIBSTROKESET_API COptimizationParameters {
public:
    COptimizationParameters(float positionTolerance, bool removeDuplicatedPaths,
                            bool removeDuplicatedReversedPaths, bool autojoinPaths,
                            bool autojoinReversedPaths, bool removeDegeneratedLines,
                            bool closeSubpaths, bool minimizeJumpDistances);

    /// Two points match when this is strictly greater than their distance.
    float positionTolerance() const { return m_positionTolerance; }
    bool removeDuplicatedPaths() const { return m_removeDuplicatedPaths; }
    bool removeDuplicatedReversedPaths() const { return m_removeDuplicatedReversedPaths; }
    bool autojoinPaths() const { return m_autojoinPaths; }
    bool autojoinReversedPaths() const { return m_autojoinReversedPaths; }
    bool removeDegeneratedLines() const { return m_removeDegeneratedLines; }
    bool closeSubpaths() const { return m_closeSubpaths; }
    bool minimizeJumpDistances() const { return m_minimizeJumpDistances; }

private:
    float m_positionTolerance;
    bool m_removeDuplicatedPaths;
    bool m_removeDuplicatedReversedPaths;
    bool m_autojoinPaths;
    bool m_autojoinReversedPaths;
    bool m_removeDegeneratedLines;
    bool m_closeSubpaths;
    bool m_minimizeJumpDistances;
};

} // namespace LibStrokeset
