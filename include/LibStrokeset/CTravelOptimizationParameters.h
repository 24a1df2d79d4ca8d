#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

namespace LibStrokeset {

/// Which improvements an optimizeTravel run makes to the order of a drawing. Every switch is
/// off by default, so that a default run changes nothing.
class LIBSTROKESET_API CTravelOptimizationParameters {
public:
    /// Every switch off; a refinement time limit of 10 seconds.
    CTravelOptimizationParameters() = default;
    /// Takes every setting, in the order of the getters.
    CTravelOptimizationParameters(bool pensTogether, bool closedStarts, bool refine,
                                  double refinementTimeLimit, bool innerFirst = false)
        : m_pensTogether(pensTogether), m_closedStarts(closedStarts), m_refine(refine),
          m_refinementTimeLimit(refinementTimeLimit), m_innerFirst(innerFirst) {}

    /// Draw pen by pen, pens in the order of their first appearance, so that each stretch
    /// between unsupported records changes to each pen once.
    bool pensTogether() const { return m_pensTogether; }
    /// Enter a closed sub-path at whichever of its points makes the travel shortest.
    bool closedStarts() const { return m_closedStarts; }
    /// Improve the nearest-neighbour order with local moves until none helps or the time
    /// limit runs out.
    bool refine() const { return m_refine; }
    /// Seconds from the start of the run after which the refinement stops where it is; 0 or
    /// less stops it before its first move.
    double refinementTimeLimit() const { return m_refinementTimeLimit; }
    /// Draw a closed sub-path that lies inside another closed sub-path of the same stretch
    /// before that one, at every depth of nesting, as a cutter must (a part that drops out
    /// before its holes are cut spoils them). Inside means: the inner contour's bounding box
    /// lies within the outer's and is the smaller (or, when they are equal, the inner comes
    /// first in the drawing), and its lowest vertex (least x, then least y) that is not on the
    /// outer contour lies inside it by the even-odd rule; a contour with every vertex on the
    /// other is not inside it. This rule comes first: the other switches shorten the travel
    /// within it, and a drawing whose order breaks it is reordered even when that lengthens
    /// the travel or adds pen changes.
    bool innerFirst() const { return m_innerFirst; }

    ///@{
    /// Sets the switch or limit of the getter of the same name.
    void setPensTogether(bool value) { m_pensTogether = value; }
    void setClosedStarts(bool value) { m_closedStarts = value; }
    void setRefine(bool value) { m_refine = value; }
    void setRefinementTimeLimit(double seconds) { m_refinementTimeLimit = seconds; }
    void setInnerFirst(bool value) { m_innerFirst = value; }
    ///@}

private:
    bool m_pensTogether = false;
    bool m_closedStarts = false;
    bool m_refine = false;
    double m_refinementTimeLimit = 10.0;
    bool m_innerFirst = false;
};

} // namespace LibStrokeset
