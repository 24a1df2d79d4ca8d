#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

namespace LibStrokeset {

/// What an optimize run did; every field is zero until a run fills it. A run that returns
/// normally overwrites every field; one that ends by an exception leaves them as they were.
class LIBSTROKESET_API COptimizationResults {
public:
    /// Every field zero.
    COptimizationResults() = default;

    /// Phase passes run: one for each phase that ran, the autojoin phase counting one per pass.
    int passes() const { return m_passes; }
    /// The phases' advance estimates of their steps, summed.
    unsigned long long estimatedRuns() const { return m_estimatedRuns; }
    /// The steps the phases actually took, summed.
    unsigned long long performedRuns() const { return m_performedRuns; }
    /// Collections in the document when the run began.
    int startCollectionSize() const { return m_startCollectionSize; }
    /// Collections after duplicate removal and autojoin; the later phases do not update it.
    int endCollectionSize() const { return m_endCollectionSize; }
    /// Sub-paths removed as duplicates, forward and reversed together.
    int duplicatedPaths() const { return m_duplicatedPaths; }
    /// Sub-paths joined onto another (and so removed).
    int autojoinedPaths() const { return m_autojoinedPaths; }
    /// Lines removed as shorter than the tolerance.
    int degeneratedLines() const { return m_degeneratedLines; }
    /// Sub-paths whose end was snapped onto their start.
    int closedSubpaths() const { return m_closedSubpaths; }
    /// Pen-up travel between the collections, in list order, before the reordering; 0 when
    /// the reordering did not measure it.
    float totalJumpDistanceBeforeOptimization() const { return m_totalJumpDistanceBefore; }
    /// Pen-up travel of the order the reordering built, adopted or not; 0 when it did not
    /// measure it.
    float totalJumpDistanceAfterOptimization() const { return m_totalJumpDistanceAfter; }
    /// Duration of the run in milliseconds, on a monotonic clock, truncated.
    long long elapsedTime() const { return m_elapsedTime; }

    ///@{
    /// Sets the field of the getter of the same name; optimize fills them all.
    void setPasses(int value) { m_passes = value; }
    void setEstimatedRuns(unsigned long long value) { m_estimatedRuns = value; }
    void setPerformedRuns(unsigned long long value) { m_performedRuns = value; }
    void setStartCollectionSize(int value) { m_startCollectionSize = value; }
    void setEndCollectionSize(int value) { m_endCollectionSize = value; }
    void setDuplicatedPaths(int value) { m_duplicatedPaths = value; }
    void setAutojoinedPaths(int value) { m_autojoinedPaths = value; }
    void setDegeneratedLines(int value) { m_degeneratedLines = value; }
    void setClosedSubpaths(int value) { m_closedSubpaths = value; }
    void setTotalJumpDistanceBeforeOptimization(float value) { m_totalJumpDistanceBefore = value; }
    void setTotalJumpDistanceAfterOptimization(float value) { m_totalJumpDistanceAfter = value; }
    void setElapsedTime(long long value) { m_elapsedTime = value; }
    ///@}

private:
    int m_passes = 0;
    unsigned long long m_estimatedRuns = 0;
    unsigned long long m_performedRuns = 0;
    int m_startCollectionSize = 0;
    int m_endCollectionSize = 0;
    int m_duplicatedPaths = 0;
    int m_autojoinedPaths = 0;
    int m_degeneratedLines = 0;
    int m_closedSubpaths = 0;
    float m_totalJumpDistanceBefore = 0.0f;
    float m_totalJumpDistanceAfter = 0.0f;
    long long m_elapsedTime = 0;
};

} // namespace LibStrokeset
