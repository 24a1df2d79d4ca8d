#include "Flattener.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace LibStrokeset::Formats::Svg {

namespace {

constexpr double kPi = 3.14159265358979323846;
const char* const kOutOfRange = "a coordinate is beyond what a drawing can hold";

double largestCoordinate(std::initializer_list<SVec2> points) {
    double largest = 0.0;
    for (SVec2 p : points) {
        largest = std::max({largest, std::fabs(p.x), std::fabs(p.y)});
    }
    return largest;
}

/// The arc's centre and angles, as SVG's endpoint parametrisation defines them; radii too
/// small to reach from one end to the other are scaled up.
struct SCentreArc {
    SVec2 centre;
    double radiusX, radiusY, start, sweep;
};

SCentreArc centreOf(SVec2 from, const SSegment& arc) {
    const double phi = arc.rotation * kPi / 180.0;
    const double cosPhi = std::cos(phi), sinPhi = std::sin(phi);
    const SVec2 half = 0.5 * (from - arc.end);
    const double x1 = cosPhi * half.x + sinPhi * half.y, y1 = -sinPhi * half.x + cosPhi * half.y;
    double rx = std::fabs(arc.radiusX), ry = std::fabs(arc.radiusY);
    const double lambda = (x1 * x1) / (rx * rx) + (y1 * y1) / (ry * ry);
    if (lambda > 1.0) {
        rx *= std::sqrt(lambda);
        ry *= std::sqrt(lambda);
    }
    const double rx2 = rx * rx, ry2 = ry * ry;
    const double below = rx2 * y1 * y1 + ry2 * x1 * x1;
    double factor = std::sqrt(std::fmax(0.0, (rx2 * ry2 - below) / below));
    if (arc.largeArc == arc.sweep) {
        factor = -factor;
    }
    const double cx = factor * rx * y1 / ry, cy = -factor * ry * x1 / rx;
    const SVec2 middle = 0.5 * (from + arc.end);
    const SVec2 centre{cosPhi * cx - sinPhi * cy + middle.x, sinPhi * cx + cosPhi * cy + middle.y};
    const double start = std::atan2((y1 - cy) / ry, (x1 - cx) / rx);
    double sweep = std::atan2((-y1 - cy) / ry, (-x1 - cx) / rx) - start;
    if (!arc.sweep && sweep > 0.0) {
        sweep -= 2.0 * kPi;
    } else if (arc.sweep && sweep < 0.0) {
        sweep += 2.0 * kPi;
    }
    return {centre, rx, ry, start, sweep};
}

} // namespace

CFlattener::CFlattener(double tolerance, std::size_t pointLimit)
    : m_tolerance(tolerance), m_pointLimit(pointLimit) {}

double CFlattener::segmentsForCurvature(double secondDerivative, double tolerance) {
    return std::max(1.0, std::ceil(std::sqrt(secondDerivative / (8.0 * tolerance))));
}

double CFlattener::arcStep(double radius, double tolerance) {
    // A chord of angle h on a circle of radius r stays within r (1 - cos(h/2)) of the arc;
    // an affine image of that circle stretches the gap by at most its largest semi-axis.
    const double cosine = 1.0 - tolerance / radius;
    return cosine <= 0.0 ? kPi : std::min(kPi, 2.0 * std::acos(cosine));
}

double CFlattener::toleranceNear(std::initializer_list<SVec2> points) const {
    // Rounding to float moves each coordinate by at most half a float step of the largest.
    const double margin = largestCoordinate(points) * static_cast<double>(FLT_EPSILON);
    return std::max(m_tolerance - margin, m_tolerance / 2.0);
}

bool CFlattener::reserve(double segments) {
    if (!m_error.empty()) {
        return false;
    }
    if (!std::isfinite(segments)) {
        m_error = kOutOfRange;
    } else if (segments > static_cast<double>(m_pointLimit - m_points)) {
        m_error = "the drawing would need more than " + std::to_string(m_pointLimit) +
                  " points at this tolerance";
    }
    return m_error.empty();
}

void CFlattener::append(SVec2 p) {
    if (!fitsFloat(p.x) || !fitsFloat(p.y)) {
        m_error = kOutOfRange;
        return;
    }
    m_current.points.push_back(p);
    ++m_points;
    m_pen = p;
    m_drew = m_drew || m_current.points.size() > 1;
}

void CFlattener::startStroke(SVec2 start) {
    m_current.points.clear();
    m_open = true;
    m_drew = false;
    m_start = start;
    if (reserve(1.0)) {
        append(start);
    }
}

void CFlattener::endStroke(bool closed) { endStroke(closed, m_zeroLengthDraws); }

void CFlattener::endStroke(bool closed, bool keepDot) {
    if (!m_open || !m_error.empty()) {
        return;
    }
    m_open = false;
    if (m_drew && closed && m_pen != m_start && reserve(1.0)) {
        append(m_start);
    }
    if (m_drew || (closed && keepDot)) { // a move and a close alone may draw a dot
        m_strokes.push_back(m_current);
    } else {
        --m_points;
    }
}

void CFlattener::addPath(const std::vector<SSegment>& segments, bool zeroLengthDraws) {
    m_zeroLengthDraws = zeroLengthDraws;
    SVec2 user; // the current point in the path's own coordinates
    for (const SSegment& s : segments) {
        if (!m_error.empty()) {
            return;
        }
        if (s.kind == ESegment::eMove) {
            endStroke(false);
            startStroke(m_transform.apply(s.end));
        } else if (s.kind == ESegment::eClose) {
            endStroke(true);
        } else {
            if (!m_open) { // drawing on after a close starts where the close returned to
                startStroke(m_transform.apply(user));
            }
            switch (s.kind) {
            case ESegment::eLine: lineTo(s.end); break;
            case ESegment::eQuadratic: quadraticTo(s.control1, s.end); break;
            case ESegment::eCubic: cubicTo(s.control1, s.control2, s.end); break;
            default: arcTo(user, s); break;
            }
        }
        user = s.end;
    }
    endStroke(false);
}

void CFlattener::lineTo(SVec2 end) {
    if (reserve(1.0)) {
        append(m_transform.apply(end));
    }
}

void CFlattener::quadraticTo(SVec2 control, SVec2 end) {
    const SVec2 p0 = m_pen, p1 = m_transform.apply(control), p2 = m_transform.apply(end);
    // c''(t) = 2 (p0 - 2 p1 + p2) everywhere.
    const double bend = 2.0 * length(p0 - 2.0 * p1 + p2);
    const double n = segmentsForCurvature(bend, toleranceNear({p0, p1, p2}));
    if (!reserve(n)) {
        return;
    }
    for (double i = 1.0; i < n; ++i) {
        const double t = i / n, u = 1.0 - t;
        append(u * u * p0 + 2.0 * u * t * p1 + t * t * p2);
    }
    append(p2);
}

void CFlattener::cubicTo(SVec2 control1, SVec2 control2, SVec2 end) {
    const SVec2 p0 = m_pen, p1 = m_transform.apply(control1), p2 = m_transform.apply(control2),
                p3 = m_transform.apply(end);
    // c''(t) = 6 ((1 - t) (p0 - 2 p1 + p2) + t (p1 - 2 p2 + p3)): at most 6 times the larger.
    const double bend = 6.0 * std::max(length(p0 - 2.0 * p1 + p2), length(p1 - 2.0 * p2 + p3));
    const double n = segmentsForCurvature(bend, toleranceNear({p0, p1, p2, p3}));
    if (!reserve(n)) {
        return;
    }
    for (double i = 1.0; i < n; ++i) {
        const double t = i / n, u = 1.0 - t;
        append(u * u * u * p0 + 3.0 * u * u * t * p1 + 3.0 * u * t * t * p2 + t * t * t * p3);
    }
    append(p3);
}

void CFlattener::arcTo(SVec2 from, const SSegment& arc) {
    if (from == arc.end) {
        return; // SVG leaves out an arc that ends where it starts
    }
    if (arc.radiusX == 0.0 || arc.radiusY == 0.0) {
        lineTo(arc.end);
        return;
    }
    const SCentreArc c = centreOf(from, arc);
    // The unit circle's image: the arc's radii and rotation, then the output map.
    const SAffine shape =
        compose(SAffine::rotation(arc.rotation), SAffine::scaling(c.radiusX, c.radiusY));
    SAffine axes = compose(m_transform, shape);
    axes.e = axes.f = 0.0;
    ellipsePoints(m_transform.apply(c.centre), axes, c.start, c.sweep);
    append(m_transform.apply(arc.end));
}

void CFlattener::ellipsePoints(SVec2 centre, const SAffine& axes, double from, double sweep) {
    const double radius = axes.largestStretch();
    const double tolerance = toleranceNear({centre, centre + SVec2{radius, radius}});
    const double n = std::max(1.0, std::ceil(std::fabs(sweep) / arcStep(radius, tolerance)));
    if (!reserve(n)) {
        return;
    }
    for (double i = 1.0; i < n; ++i) {
        const double t = from + sweep * (i / n);
        append(centre + axes.applyLinear({std::cos(t), std::sin(t)}));
    }
}

void CFlattener::addEllipse(SVec2 centre, double radiusX, double radiusY) {
    if (!(radiusX > 0.0 && radiusY > 0.0) || !m_error.empty()) {
        return; // SVG draws nothing for a zero radius
    }
    SAffine axes = compose(m_transform, SAffine::scaling(radiusX, radiusY));
    axes.e = axes.f = 0.0;
    const SVec2 middle = m_transform.apply(centre);
    const double radius = axes.largestStretch();
    // Every point of an ellipse this small lies within the tolerance of its centre.
    if (radius < toleranceNear({middle, middle + SVec2{radius, radius}})) {
        startStroke(middle);
        endStroke(true, true);
        return;
    }
    startStroke(middle + axes.applyLinear({1.0, 0.0}));
    ellipsePoints(middle, axes, 0.0, 2.0 * kPi);
    endStroke(true);
}

} // namespace LibStrokeset::Formats::Svg
