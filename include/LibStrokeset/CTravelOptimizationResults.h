#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

namespace LibStrokeset {

/// What an optimizeTravel run did; every field is zero until a run fills it.
class LIBSTROKESET_API CTravelOptimizationResults {
public:
    /// Every field zero.
    CTravelOptimizationResults() = default;

    /// Pen-up travel before the run: the jumps between neighbouring paths and dots, none
    /// across an unsupported record, summed in double.
    double travelBefore() const { return m_travelBefore; }
    /// The same after the run; equal to travelBefore when the order was kept.
    double travelAfter() const { return m_travelAfter; }
    /// Pen change records that serialize would write before the run.
    unsigned int penChangesBefore() const { return m_penChangesBefore; }
    /// The same after the run.
    unsigned int penChangesAfter() const { return m_penChangesAfter; }
    /// Sub-paths that now run the other way.
    unsigned int reversedPaths() const { return m_reversedPaths; }
    /// Closed sub-paths that now start at another point.
    unsigned int rotatedPaths() const { return m_rotatedPaths; }
    /// Refinement moves applied, each of which shortened the travel.
    unsigned long long appliedMoves() const { return m_appliedMoves; }
    /// Whether the refinement stopped at its time limit before every move was tried.
    bool refinementTimedOut() const { return m_refinementTimedOut; }
    /// Duration of the run in milliseconds, on a monotonic clock, truncated.
    long long elapsedTime() const { return m_elapsedTime; }

    ///@{
    /// Sets the field of the getter of the same name; optimizeTravel fills them all.
    void setTravelBefore(double value) { m_travelBefore = value; }
    void setTravelAfter(double value) { m_travelAfter = value; }
    void setPenChangesBefore(unsigned int value) { m_penChangesBefore = value; }
    void setPenChangesAfter(unsigned int value) { m_penChangesAfter = value; }
    void setReversedPaths(unsigned int value) { m_reversedPaths = value; }
    void setRotatedPaths(unsigned int value) { m_rotatedPaths = value; }
    void setAppliedMoves(unsigned long long value) { m_appliedMoves = value; }
    void setRefinementTimedOut(bool value) { m_refinementTimedOut = value; }
    void setElapsedTime(long long value) { m_elapsedTime = value; }
    ///@}

private:
    double m_travelBefore = 0.0;
    double m_travelAfter = 0.0;
    unsigned int m_penChangesBefore = 0;
    unsigned int m_penChangesAfter = 0;
    unsigned int m_reversedPaths = 0;
    unsigned int m_rotatedPaths = 0;
    unsigned long long m_appliedMoves = 0;
    bool m_refinementTimedOut = false;
    long long m_elapsedTime = 0;
};

} // namespace LibStrokeset
