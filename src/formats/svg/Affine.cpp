#include "Affine.h"

#include <cfloat>
#include <cmath>
#include <vector>

#include "Scanner.h"

namespace LibStrokeset::Formats::Svg {

namespace {

constexpr double kPi = 3.14159265358979323846;

double radians(double degrees) { return degrees * kPi / 180.0; }

/// The numbers inside "name(...)": between `least` and `most` of them.
bool arguments(CScanner& scanner, std::vector<double>& values, std::size_t least,
               std::size_t most) {
    scanner.skipSpace();
    if (!scanner.accept('(')) {
        return false;
    }
    scanner.skipSpace();
    double value = 0.0;
    while (values.size() < most && scanner.number(value)) {
        values.push_back(value);
        scanner.skipSeparator();
    }
    scanner.skipSpace();
    return scanner.accept(')') && values.size() >= least;
}

/// One "name(arguments)" of a transform list.
bool transformItem(CScanner& scanner, SAffine& item) {
    const std::string_view name = scanner.word();
    std::vector<double> v;
    if (name == "matrix" && arguments(scanner, v, 6, 6)) {
        item = {v[0], v[1], v[2], v[3], v[4], v[5]};
    } else if (name == "translate" && arguments(scanner, v, 1, 2)) {
        item = SAffine::translation(v[0], v.size() > 1 ? v[1] : 0.0);
    } else if (name == "scale" && arguments(scanner, v, 1, 2)) {
        item = SAffine::scaling(v[0], v.size() > 1 ? v[1] : v[0]);
    } else if (name == "rotate" && arguments(scanner, v, 1, 3) && v.size() != 2) {
        item = SAffine::rotation(v[0]);
        if (v.size() == 3) { // about (cx, cy)
            item = compose(SAffine::translation(v[1], v[2]),
                           compose(item, SAffine::translation(-v[1], -v[2])));
        }
    } else if (name == "skewX" && arguments(scanner, v, 1, 1)) {
        item = {1.0, 0.0, std::tan(radians(v[0])), 1.0, 0.0, 0.0};
    } else if (name == "skewY" && arguments(scanner, v, 1, 1)) {
        item = {1.0, std::tan(radians(v[0])), 0.0, 1.0, 0.0, 0.0};
    } else {
        return false;
    }
    return true;
}

} // namespace

double length(SVec2 v) { return std::hypot(v.x, v.y); }

namespace {
// Halfway between the largest float and the next power of two: beyond it lies infinity.
const double kFloatLimit = static_cast<double>(FLT_MAX) + std::ldexp(1.0, 103);
} // namespace

bool fitsFloat(double value) { return std::fabs(value) < kFloatLimit; }

float toFloat(double value) {
    // Converting a value beyond the largest float is undefined, even where it rounds to it.
    if (std::fabs(value) > static_cast<double>(FLT_MAX)) {
        return value > 0.0 ? FLT_MAX : -FLT_MAX;
    }
    return static_cast<float>(value);
}

SAffine SAffine::rotation(double degrees) {
    const double c = std::cos(radians(degrees)), s = std::sin(radians(degrees));
    return {c, s, -s, c, 0.0, 0.0};
}

bool SAffine::isIdentity() const {
    return a == 1.0 && b == 0.0 && c == 0.0 && d == 1.0 && e == 0.0 && f == 0.0;
}

SVec2 SAffine::apply(SVec2 p) const {
    if (isIdentity()) {
        return p;
    }
    return {a * p.x + c * p.y + e, b * p.x + d * p.y + f};
}

SVec2 SAffine::applyLinear(SVec2 v) const { return {a * v.x + c * v.y, b * v.x + d * v.y}; }

double SAffine::largestStretch() const {
    // The largest singular value of [[a c] [b d]].
    const double s = (a * a + b * b + c * c + d * d) / 2.0;
    const double det = a * d - b * c;
    return std::sqrt(s + std::sqrt(std::fmax(s * s - det * det, 0.0)));
}

SAffine compose(const SAffine& second, const SAffine& first) {
    const SAffine& m = second;
    const SAffine& n = first;
    return {m.a * n.a + m.c * n.b, m.b * n.a + m.d * n.b,       m.a * n.c + m.c * n.d,
            m.b * n.c + m.d * n.d, m.a * n.e + m.c * n.f + m.e, m.b * n.e + m.d * n.f + m.f};
}

bool parseTransform(std::string_view text, SAffine& result) {
    CScanner scanner(text);
    SAffine total;
    scanner.skipSpace();
    while (!scanner.atEnd()) {
        SAffine item;
        if (!transformItem(scanner, item)) {
            return false;
        }
        total = compose(total, item); // the list applies right to left
        scanner.skipSeparator();
    }
    result = total;
    return true;
}

} // namespace LibStrokeset::Formats::Svg
