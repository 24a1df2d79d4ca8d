#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

namespace LibStrokeset {

/// What an optimize run did; every field is zero until a run fills it.
class LIBSTROKESET_API COptimizationResults {
public:
    COptimizationResults() = default;

    int passes() const { return m_passes; }
    unsigned long long estimatedRuns() const { return m_estimatedRuns; }
    unsigned long long performedRuns() const { return m_performedRuns; }
    int startCollectionSize() const { return m_startCollectionSize; }
    int endCollectionSize() const { return m_endCollectionSize; }
    int duplicatedPaths() const { return m_duplicatedPaths; }
    int autojoinedPaths() const { return m_autojoinedPaths; }
    int degeneratedLines() const { return m_degeneratedLines; }
    int closedSubpaths() const { return m_closedSubpaths; }
    float totalJumpDistanceBeforeOptimization() const { return m_totalJumpDistanceBefore; }
    float totalJumpDistanceAfterOptimization() const { return m_totalJumpDistanceAfter; }
    /// Duration of the run in milliseconds.
    long long elapsedTime() const { return m_elapsedTime; }

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
