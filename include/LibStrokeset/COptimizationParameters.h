#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

namespace LibStrokeset {

/// Which clean-up phases an optimize run performs, and the tolerance they use. A plain value:
/// there are no setters, so it changes only by assignment.
class LIBSTROKESET_API COptimizationParameters {
public:
    /// Takes every setting, in the order of the getters.
    COptimizationParameters(float positionTolerance, bool removeDuplicatedPaths,
                            bool removeDuplicatedReversedPaths, bool autojoinPaths,
                            bool autojoinReversedPaths, bool removeDegeneratedLines,
                            bool closeSubpaths, bool minimizeJumpDistances);

    /// Two points match when this is strictly greater than their 3D distance, so 0, a
    /// negative value or NaN matches nothing.
    float positionTolerance() const { return m_positionTolerance; }
    /// Remove a sub-path that repeats an earlier one point for point, pens included.
    bool removeDuplicatedPaths() const { return m_removeDuplicatedPaths; }
    /// Remove a sub-path that repeats an earlier one point for point when read backwards.
    bool removeDuplicatedReversedPaths() const { return m_removeDuplicatedReversedPaths; }
    /// Join two sub-paths whose ends meet without reversing either.
    bool autojoinPaths() const { return m_autojoinPaths; }
    /// Join two sub-paths whose ends meet once the second is reversed.
    bool autojoinReversedPaths() const { return m_autojoinReversedPaths; }
    /// Remove lines shorter than the tolerance.
    bool removeDegeneratedLines() const { return m_removeDegeneratedLines; }
    /// Snap the end of an almost closed sub-path (three lines or more) onto its start.
    bool closeSubpaths() const { return m_closeSubpaths; }
    /// Reorder the collections, and reverse sub-paths, to shorten the pen-up travel.
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
