#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "Affine.h"

// The path grammar of SVG, turned into absolute segments of five kinds.
namespace LibStrokeset::Formats::Svg {

enum class ESegment { eMove, eLine, eQuadratic, eCubic, eArc, eClose };

/// One segment in absolute coordinates. Smooth curves come with their reflected control
/// point filled in, H and V as lines, and a close with the point it returns to.
struct SSegment {
    ESegment kind = ESegment::eMove;
    SVec2 control1, control2; ///< the controls of curves (a quadratic uses control1)
    SVec2 end;
    double radiusX = 0.0, radiusY = 0.0, rotation = 0.0; ///< arcs, rotation in degrees
    bool largeArc = false, sweep = false;
};

struct SPathData {
    std::vector<SSegment> segments;
    /// Where the data stopped being valid; npos when all of it was. What came before an
    /// error is kept, as SVG draws a path up to its first error.
    std::size_t errorAt = std::string_view::npos;
};

SPathData parsePathData(std::string_view text);

} // namespace LibStrokeset::Formats::Svg
