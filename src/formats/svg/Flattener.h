#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

#include "Affine.h"
#include "PathData.h"

// Turns SVG geometry into polylines in output coordinates. Every point of a polyline lies
// within the tolerance of the true curve, with as few segments as a bound on the curve's
// second derivative allows.
namespace LibStrokeset::Formats::Svg {

/// A polyline of at least two points, or a dot (one point).
struct SStroke {
    std::vector<SVec2> points;
    bool isDot() const { return points.size() == 1; }
};

class CFlattener {
public:
    /// `pointLimit` bounds the points of all strokes together, so that a tiny tolerance on a
    /// huge curve fails instead of exhausting memory.
    CFlattener(double tolerance, std::size_t pointLimit);

    /// The map from the coordinates of the next shapes to output coordinates.
    void setTransform(const SAffine& toOutput) { m_transform = toOutput; }

    /// Adds the strokes of a path: a sub-path that draws becomes a polyline, closed ones end
    /// on their first point, and a move followed only by a close becomes a dot if
    /// `zeroLengthDraws` (the stroke's caps show it).
    void addPath(const std::vector<SSegment>& segments, bool zeroLengthDraws);
    /// A whole ellipse (or circle), closed; a dot at its centre when it is smaller than the
    /// tolerance.
    void addEllipse(SVec2 centre, double radiusX, double radiusY);

    /// Empty while all went well; otherwise why flattening stopped.
    const std::string& error() const { return m_error; }
    std::vector<SStroke>& strokes() { return m_strokes; }

    /// How many segments a piece needs, given the largest stretch of its second derivative
    /// per parameter step squared: the bound |curve - chord| <= step^2 / 8 * max|c''|.
    static double segmentsForCurvature(double secondDerivative, double tolerance);
    /// The largest angle step along an ellipse whose longest semi-axis is `radius`.
    static double arcStep(double radius, double tolerance);

private:
    void lineTo(SVec2 end);
    void quadraticTo(SVec2 control, SVec2 end);
    void cubicTo(SVec2 control1, SVec2 control2, SVec2 end);
    /// An elliptical arc from `from` (in the shape's own coordinates, as the arc's radii are).
    void arcTo(SVec2 from, const SSegment& arc);
    /// Points of centre + axes * (cos t, sin t) for t after `from` up to `from + sweep`.
    void ellipsePoints(SVec2 centre, const SAffine& axes, double from, double sweep);
    void startStroke(SVec2 start);
    /// Ends the sub-path being drawn; a closed one returns to its start.
    void endStroke(bool closed);
    void endStroke(bool closed, bool keepDot);
    /// The tolerance less what rounding the points to float may add, for coordinates as large
    /// as those given.
    double toleranceNear(std::initializer_list<SVec2> points) const;
    /// Checks the number of segments about to be added; false (with the error set) if it is
    /// not finite or would pass the point limit.
    bool reserve(double segments);
    void append(SVec2 p);

    double m_tolerance;
    std::size_t m_pointLimit, m_points = 0;
    SAffine m_transform;
    std::vector<SStroke> m_strokes;
    SStroke m_current;
    SVec2 m_pen, m_start; ///< in output coordinates
    bool m_open = false, m_drew = false, m_zeroLengthDraws = true;
    std::string m_error;
};

} // namespace LibStrokeset::Formats::Svg
