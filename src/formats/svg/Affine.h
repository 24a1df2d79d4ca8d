#pragma once

#include <string_view>

// Plane geometry for SVG input and output: points and affine maps in double precision.
namespace LibStrokeset::Formats::Svg {

struct SVec2 {
    double x = 0.0, y = 0.0;
};

inline SVec2 operator+(SVec2 a, SVec2 b) { return {a.x + b.x, a.y + b.y}; }
inline SVec2 operator-(SVec2 a, SVec2 b) { return {a.x - b.x, a.y - b.y}; }
inline SVec2 operator*(double s, SVec2 a) { return {s * a.x, s * a.y}; }
inline bool operator==(SVec2 a, SVec2 b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(SVec2 a, SVec2 b) { return !(a == b); }
double length(SVec2 v);

/// Whether a coordinate rounds to a finite float (values just above the largest float round
/// down to it).
bool fitsFloat(double value);
/// The float nearest to a coordinate that fitsFloat.
float toFloat(double value);

/// x' = a x + c y + e, y' = b x + d y + f, as SVG writes matrix(a b c d e f).
struct SAffine {
    double a = 1.0, b = 0.0, c = 0.0, d = 1.0, e = 0.0, f = 0.0;

    static SAffine translation(double x, double y) { return {1.0, 0.0, 0.0, 1.0, x, y}; }
    static SAffine scaling(double x, double y) { return {x, 0.0, 0.0, y, 0.0, 0.0}; }
    static SAffine rotation(double degrees);

    bool isIdentity() const;
    /// The identity leaves a point untouched, so that -0 and the last bit survive.
    SVec2 apply(SVec2 p) const;
    /// Only the linear part: for differences of points.
    SVec2 applyLinear(SVec2 v) const;
    /// The largest factor by which the map stretches a vector.
    double largestStretch() const;
};

/// The map that applies `first`, then `second`.
SAffine compose(const SAffine& second, const SAffine& first);

/// Parses an SVG transform list ("translate(1,2) rotate(30)") into one map. An empty list is
/// the identity; returns false on a syntax error.
bool parseTransform(std::string_view text, SAffine& result);

} // namespace LibStrokeset::Formats::Svg
