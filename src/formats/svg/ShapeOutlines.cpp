#include "ShapeOutlines.h"

#include <cmath>

#include "Scanner.h"

namespace LibStrokeset::Formats::Svg {

namespace {

SSegment segment(ESegment kind, SVec2 end) {
    SSegment s;
    s.kind = kind;
    s.end = end;
    return s;
}

SSegment corner(double rx, double ry, SVec2 end) {
    SSegment s = segment(ESegment::eArc, end);
    s.radiusX = rx;
    s.radiusY = ry;
    s.sweep = true;
    return s;
}

} // namespace

std::vector<SSegment> rectangleOutline(double x, double y, double width, double height,
                                       std::optional<double> rx, std::optional<double> ry) {
    if (!(width > 0.0 && height > 0.0)) {
        return {};
    }
    double radiusX = std::fmax(rx.value_or(ry.value_or(0.0)), 0.0);
    double radiusY = std::fmax(ry.value_or(rx.value_or(0.0)), 0.0);
    radiusX = std::fmin(radiusX, width / 2.0);
    radiusY = std::fmin(radiusY, height / 2.0);
    const double right = x + width, bottom = y + height;
    if (radiusX == 0.0 || radiusY == 0.0) {
        return {segment(ESegment::eMove, {x, y}), segment(ESegment::eLine, {right, y}),
                segment(ESegment::eLine, {right, bottom}), segment(ESegment::eLine, {x, bottom}),
                segment(ESegment::eClose, {x, y})};
    }
    // Clockwise from the end of the top-left corner, as SVG defines the rounded rectangle.
    const SVec2 start{x + radiusX, y};
    return {segment(ESegment::eMove, start),
            segment(ESegment::eLine, {right - radiusX, y}),
            corner(radiusX, radiusY, {right, y + radiusY}),
            segment(ESegment::eLine, {right, bottom - radiusY}),
            corner(radiusX, radiusY, {right - radiusX, bottom}),
            segment(ESegment::eLine, {x + radiusX, bottom}),
            corner(radiusX, radiusY, {x, bottom - radiusY}),
            segment(ESegment::eLine, {x, y + radiusY}),
            corner(radiusX, radiusY, start),
            segment(ESegment::eClose, start)};
}

std::vector<SSegment> lineOutline(SVec2 from, SVec2 to) {
    return {segment(ESegment::eMove, from), segment(ESegment::eLine, to)};
}

std::vector<SSegment> pointsOutline(std::string_view points, bool closed, bool& complete) {
    std::vector<SSegment> outline;
    CScanner scanner(points);
    scanner.skipSpace();
    SVec2 p;
    while (scanner.number(p.x)) {
        scanner.skipSeparator();
        if (!scanner.number(p.y)) {
            break;
        }
        scanner.skipSeparator();
        outline.push_back(segment(outline.empty() ? ESegment::eMove : ESegment::eLine, p));
    }
    complete = scanner.atEnd();
    if (closed && !outline.empty()) {
        outline.push_back(segment(ESegment::eClose, outline.front().end));
    }
    return outline;
}

} // namespace LibStrokeset::Formats::Svg
